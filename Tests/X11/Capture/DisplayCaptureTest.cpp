#include "Tests/X11/Capture/CaptureFixture.h"

#include <algorithm>
#include <string>

namespace kestrove::test {
namespace {

struct Desk {
    WindowManager windowManager;
    Compositor compositor;
    const char* name;
};

constexpr xcb_rectangle_t wholeLeft{0, 0, 1280, 800};
/// The right half of the left display and the left half of the right one.
constexpr xcb_rectangle_t acrossTheMiddle{640, 0, 1280, 800};

TestWindow::Options patterned(const xcb_rectangle_t& geometry) {
    return {.geometry = geometry, .fill = WindowFill::pattern, .overrideRedirect = true};
}

void fill(PixelImage& image, const xcb_rectangle_t& part, Color color) {
    for (int y = part.y; y < part.y + part.height; ++y) {
        const auto row = image.pixels.begin() + std::ptrdiff_t{y} * image.width;
        std::fill_n(row + part.x, part.width, color);
    }
}

class DisplayCapture : public testing::TestWithParam<Desk> {
protected:
    [[nodiscard]] const std::string& displayName() { return test.desktop.displayName(); }

    /// What is on the left display now is what a capture has to show once the output lies on it.
    void expectBeneath(std::string_view name) {
        test.settleScreen(wholeLeft);
        const auto clean = test.screen(wholeLeft);
        test.openOutput(acrossTheMiddle);
        test.start(test.display(0, {test.outputWindow()}));
        EXPECT_TRUE(test.outputBecomes(clean, name));
    }

    CaptureDesktop test{XDesktop::Options{.windowManager = GetParam().windowManager,
                                          .compositor = GetParam().compositor}};
};

INSTANTIATE_TEST_SUITE_P(Desks, DisplayCapture,
                         testing::Values(Desk{WindowManager::none, Compositor::none, "Bare"},
                                         Desk{WindowManager::openbox, Compositor::none, "Openbox"},
                                         Desk{WindowManager::openbox, Compositor::picom,
                                              "OpenboxAndPicom"}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(DisplayCapture, EqualsTheDisplayAndFollowsItsChanges) {
    TestWindow window(displayName(), patterned({100, 80, 500, 400}));
    const TestWindow next(displayName(), patterned({1200, 100, 200, 200}));
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0));
    ASSERT_TRUE(test.outputBecomesScreen(wholeLeft, "at first"));
    window.fillRectangle({10, 10, 50, 50}, 0xFF00FF00);
    EXPECT_TRUE(test.outputBecomesScreen(wholeLeft, "drawn"));
    window.move(300, 200);
    EXPECT_TRUE(test.outputBecomesScreen(wholeLeft, "moved"));
    window.unmap();
    EXPECT_TRUE(test.outputBecomesScreen(wholeLeft, "unmapped"));
}

TEST_P(DisplayCapture, ShowsWhatLiesBeneathTheOutput) {
    const TestWindow below(displayName(), patterned({50, 50, 700, 500}));
    const TestWindow managed(
        displayName(),
        {.geometry = {700, 300, 300, 200}, .fill = WindowFill::pattern, .title = "managed"});
    expectBeneath("beneath");
}

TEST_P(DisplayCapture, FollowsWhatChangesBeneathTheOutput) {
    TestWindow below(displayName(), patterned({700, 50, 400, 500}));
    test.settleScreen(wholeLeft);
    auto expected = test.screen(wholeLeft);
    test.openOutput(acrossTheMiddle);
    test.start(test.display(0, {test.outputWindow()}));
    ASSERT_TRUE(test.outputBecomes(expected, "before"));
    below.fillRectangle({10, 20, 30, 40}, 0xFFFF0000);
    fill(expected, {710, 70, 30, 40}, 0xFFFF0000);
    EXPECT_TRUE(test.outputBecomes(expected, "changed"));
}

TEST_P(DisplayCapture, FollowsAWindowThatFillsItAndOthersThatComeAndGo) {
    TestWindow filling(displayName(), patterned(wholeLeft));
    test.settleScreen(wholeLeft);
    auto expected = test.screen(wholeLeft);
    // As the mark of what is shared, along an edge.
    const TestWindow mark(
        displayName(),
        {.geometry = {0, 0, 1280, 4}, .color = 0xFFFF00FF, .overrideRedirect = true});
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0, {mark.id()}));
    ASSERT_TRUE(test.outputBecomes(expected, "filled"));
    Color color = 0xFF101010;
    const auto draw = [&](const xcb_rectangle_t& part) {
        color += 0x102030;
        filling.fillRectangle(part, color);
        fill(expected, part, color);
    };
    draw({0, 0, 100, 50});
    draw({600, 350, 80, 60});
    ASSERT_TRUE(test.outputBecomes(expected, "drawn beneath the mark and elsewhere"));
    for (int time = 0; time < 3; ++time) {
        const auto without = expected;
        TestWindow other(
            displayName(),
            {.geometry = {500, 300, 100, 80}, .color = 0xFF0055AA, .overrideRedirect = true});
        fill(expected, {500, 300, 100, 80}, 0xFF0055AA);
        EXPECT_TRUE(test.outputBecomes(expected, "another one came"));
        other.fillRectangle({10, 10, 20, 20}, 0xFF00FF00);
        fill(expected, {510, 310, 20, 20}, 0xFF00FF00);
        EXPECT_TRUE(test.outputBecomes(expected, "the other was drawn into"));
        other.unmap();
        expected = without;
        EXPECT_TRUE(test.outputBecomes(expected, "it went"));
        // At once: what changes while the display is put together anew is not lost.
        other.show();
        draw({200, 500, 60, 60});
        other.unmap();
        draw({300, 500, 60, 60});
        EXPECT_TRUE(test.outputBecomes(expected, "drawn as it came and went"));
    }
}

TEST_P(DisplayCapture, ComposesAShapedWindowBeneathTheOutput) {
    const TestWindow bottom(displayName(), patterned({600, 50, 500, 500}));
    TestWindow shaped(
        displayName(),
        {.geometry = {650, 100, 300, 300}, .color = 0xFFCC3300, .overrideRedirect = true});
    shaped.setShape({{0, 0, 100, 100}, {150, 150, 150, 50}});
    expectBeneath("shaped");
}

TEST_P(DisplayCapture, ComposesAnArgbWindowBeneathTheOutput) {
    const TestWindow bottom(displayName(), patterned({600, 50, 500, 500}));
    const TestWindow argb(displayName(), {.geometry = {650, 100, 300, 300},
                                          .depth = 32,
                                          .color = 0x80400010,
                                          .overrideRedirect = true});
    expectBeneath("argb");
}

TEST_P(DisplayCapture, ComposesATranslucentWindowBeneathTheOutput) {
    const TestWindow bottom(displayName(), patterned({600, 50, 500, 500}));
    const TestWindow translucent(displayName(), {.geometry = {650, 100, 300, 300},
                                                 .color = 0xFF20C040,
                                                 .overrideRedirect = true,
                                                 .opacity = 0.5});
    test.settleScreen(wholeLeft);
    const auto clean = test.screen(wholeLeft);
    test.openOutput(acrossTheMiddle);
    test.start(test.display(0, {test.outputWindow()}));
    // Compositors round an opacity in their own way.
    EXPECT_TRUE(test.outputBecomes(clean, "translucent", 2));
}

TEST_P(DisplayCapture, KeepsWhatLiesAboveTheOutput) {
    const TestWindow below(displayName(), patterned({600, 50, 500, 500}));
    test.openOutput(acrossTheMiddle);
    test.start(test.display(0, {test.outputWindow()}));
    const TestWindow above(
        displayName(),
        {.geometry = {700, 300, 200, 100}, .color = 0xFF0055AA, .overrideRedirect = true});
    EXPECT_TRUE(test.loop.spinUntil([&] { return test.output().pixel(750, 350) == 0xFF0055AA; }));
    EXPECT_TRUE(test.loop.spinUntil(
        [&] { return test.output().pixel(699, 350) == TestWindow::patternAt(99, 300); }));
}

TEST_P(DisplayCapture, FollowsTheOutputThatMovesOverTheDisplay) {
    const TestWindow below(displayName(), patterned({50, 50, 1100, 600}));
    test.settleScreen(wholeLeft);
    const auto clean = test.screen(wholeLeft);
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0, {test.outputWindow()}));
    for (const int x : {900, 400, 0, 700}) {
        test.moveOutput(x, 0);
        EXPECT_TRUE(test.outputBecomes(clean, "moved to " + std::to_string(x)));
    }
}

TEST_P(DisplayCapture, LeavesOutAWindowThatComesOntoTheScreenLater) {
    const TestWindow beside(displayName(), patterned({50, 50, 200, 600}));
    test.settleScreen(wholeLeft);
    const auto clean = test.screen(wholeLeft);
    TestWindow late(displayName(), {.geometry = {300, 200, 400, 300}, .mapped = false});
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0, {late.id()}));
    ASSERT_TRUE(test.outputBecomes(clean, "before"));
    // A window manager puts a frame around it.
    late.show();
    test.settleScreen(wholeLeft);
    ASSERT_NE(test.screen(wholeLeft).pixels, clean.pixels);
    test.settle();
    EXPECT_TRUE(test.outputBecomes(clean, "after"));
}

TEST_P(DisplayCapture, CostsNothingWhileNothingChanges) {
    const TestWindow below(displayName(), patterned({50, 50, 600, 400}));
    test.openOutput({200, 150, 640, 400});
    test.start(test.display(0, {test.outputWindow()}), CaptureDesktop::configurationAt(60, true));
    test.settle();
    const int before = test.frames;
    int events = 0;
    const auto counting = test.connection->events.subscribe([&](const auto&) { ++events; });
    const auto requests = test.requestCount();
    EXPECT_FALSE(test.loop.spinUntil([&] { return events > 0; }, Seconds(10)));
    EXPECT_EQ(test.frames, before);
    EXPECT_EQ(events, 0);
    // The counting itself is one.
    EXPECT_EQ(test.requestCount() - requests, 1U);
}

TEST_P(DisplayCapture, NeverLetsTheNeighbourIn) {
    const TestWindow left(
        displayName(),
        {.geometry = {0, 0, 1280, 800}, .color = 0xFF0000FF, .overrideRedirect = true});
    const TestWindow right(
        displayName(),
        {.geometry = {1280, 0, 1280, 800}, .color = 0xFFFF0000, .overrideRedirect = true});
    test.openOutput({1500, 100, 701, 443});
    test.start(test.display(0));
    EXPECT_TRUE(test.loop.spinUntil([&] { return test.output().pixel(350, 200) == 0xFF0000FF; }));
    const auto output = test.output();
    for (int y = 0; y < output.height; ++y) {
        for (int x = 0; x < output.width; ++x)
            ASSERT_EQ(output.pixel(x, y) & 0xFF0000U, 0U) << x << ' ' << y;
    }
}

TEST_P(DisplayCapture, ShowsTheCursorWhereItPoints) {
    const TestWindow below(
        displayName(),
        {.geometry = {0, 0, 1280, 800}, .color = 0xFFFFFFFF, .overrideRedirect = true});
    test.desktop.server().movePointer(400, 300);
    test.settleScreen(wholeLeft);
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0), CaptureDesktop::configurationAt(60, true));
    const auto isDrawnAround = [&](int x, int y) {
        const auto near = test.output().part(x - 16, y - 16, 32, 32);
        return std::ranges::count(near.pixels, 0xFFFFFFFFU) < std::ptrdiff_t{32} * 32;
    };
    EXPECT_TRUE(test.loop.spinUntil([&] { return isDrawnAround(400, 300); }));
    test.desktop.server().movePointer(700, 500);
    EXPECT_TRUE(
        test.loop.spinUntil([&] { return isDrawnAround(700, 500) && !isDrawnAround(400, 300); }));
    test.desktop.server().movePointer(1800, 500);
    EXPECT_TRUE(test.loop.spinUntil([&] { return !isDrawnAround(700, 500); }));
}

TEST_P(DisplayCapture, ReportsThatItsDisplayHasGone) {
    test.openOutput({1280, 0, 600, 400});
    test.start(test.display(1, {test.outputWindow()}));
    test.settle();
    test.desktop.server().removeMonitor(twoMonitors().at(1).name);
    EXPECT_TRUE(test.loop.spinUntil([&] { return !test.stops.empty(); }));
    EXPECT_EQ(test.stops.size(), 1U);
}

TEST_P(DisplayCapture, ReportsThatTheServerHasGoneAndLives) {
    test.openOutput({1280, 0, 600, 400});
    test.start(test.display(0));
    test.settle();
    test.desktop.server().kill();
    EXPECT_TRUE(test.loop.spinUntil([&] { return !test.stops.empty(); }));
    EXPECT_EQ(test.layer->status(), DisplayLayerStatus::failed);
    test.layer->flush();
}

} // namespace
} // namespace kestrove::test
