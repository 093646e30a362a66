#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Capture/CaptureFixture.h"

#include <algorithm>
#include <xcb/composite.h>

namespace kestrove::test {
namespace {

struct Desk {
    WindowManager windowManager;
    Compositor compositor;
    const char* name;
};

class WindowCapture : public testing::TestWithParam<Desk> {
protected:
    [[nodiscard]] const std::string& displayName() { return test.desktop.displayName(); }

    /// A managed window where there is a window manager.
    [[nodiscard]] static TestWindow::Options source(std::uint8_t depth = 24) {
        return {.geometry = {100, 80, 400, 300}, .depth = depth, .fill = WindowFill::pattern};
    }

    /// What the pattern of a window of this size looks like.
    [[nodiscard]] static PixelImage pattern(int width, int height) {
        PixelImage image{width, height, {}};
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x)
                image.pixels.push_back(TestWindow::patternAt(x, y));
        }
        return image;
    }

    CaptureDesktop test{XDesktop::Options{.windowManager = GetParam().windowManager,
                                          .compositor = GetParam().compositor}};
};

INSTANTIATE_TEST_SUITE_P(Desks, WindowCapture,
                         testing::Values(Desk{WindowManager::none, Compositor::none, "Bare"},
                                         Desk{WindowManager::openbox, Compositor::none, "Openbox"},
                                         Desk{WindowManager::openbox, Compositor::picom,
                                              "OpenboxAndPicom"}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(WindowCapture, EqualsTheWindowAndStaysLiveWhileCovered) {
    TestWindow window(displayName(), source());
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(window.id()));
    auto expected = pattern(400, 300);
    ASSERT_TRUE(test.outputBecomes(expected, "uncovered"));
    const TestWindow cover(displayName(), {.geometry = {0, 0, 900, 700}, .overrideRedirect = true});
    window.fillRectangle({0, 0, 400, 10}, 0xFF123456);
    std::fill_n(expected.pixels.begin(), 4000, 0xFF123456U);
    EXPECT_TRUE(test.outputBecomes(expected, "covered"));
}

TEST_P(WindowCapture, ShowsNothingOfWhatCoversAWindowThatHangs) {
    constexpr Color secret = 0xFFFF00FF;
    TestWindow window(displayName(), source());
    const TestWindow cover(
        displayName(),
        {.geometry = {200, 150, 100, 50}, .color = secret, .overrideRedirect = true});
    test.settleScreen({0, 0, 1280, 800});
    window.hang();
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(window.id()));
    auto expected = pattern(400, 300);
    // A compositor has kept what is covered.
    for (int y = 70; y < 120 && GetParam().compositor == Compositor::none; ++y)
        std::fill_n(expected.pixels.begin() + y * 400 + 100, 100, 0xFF000000);
    ASSERT_TRUE(test.outputBecomes(expected, "covered"));

    // Mapped anew, it has a new pixmap.
    window.unmap();
    test.settle();
    window.show();
    test.settle();
    EXPECT_TRUE(
        std::ranges::none_of(test.output().pixels, [&](Color color) { return color == secret; }));

    // Its program comes to again.
    window.fillRectangle({0, 0, 400, 300}, 0xFF123456);
    EXPECT_TRUE(test.loop.spinUntil([&] {
        const auto now = test.output();
        return now.pixel(150, 100) == 0xFF123456 && now.pixel(10, 10) == 0xFF123456;
    }));
}

/// Covers the output and uncovers it again, so that it has to be drawn anew.
void expose(CaptureDesktop& test, const xcb_rectangle_t& place) {
    {
        const TestWindow cover(test.desktop.displayName(),
                               {.geometry = place, .color = 0xFFFF00FF, .overrideRedirect = true});
    }
    test.settle();
}

TEST_P(WindowCapture, IsDrawnAgainAsItWasLastOnceTheWindowHasGone) {
    TestWindow window(displayName(), source());
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(window.id()));
    auto expected = pattern(400, 300);
    ASSERT_TRUE(test.outputBecomes(expected, "first"));
    window.fillRectangle({0, 20, 400, 10}, 0xFF123456);
    std::fill_n(expected.pixels.begin() + 8000, 4000, 0xFF123456U);
    ASSERT_TRUE(test.outputBecomes(expected, "changed"));
    window.destroy();
    ASSERT_TRUE(test.loop.spinUntil([&] { return !test.stops.empty(); }));
    expose(test, {1400, 100, 400, 300});
    EXPECT_TRUE(test.outputBecomes(expected, "drawn again"));
}

TEST_P(WindowCapture, IsDrawnAgainAsItWasLastOnceStopped) {
    TestWindow window(displayName(), source());
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(window.id()));
    auto expected = pattern(400, 300);
    ASSERT_TRUE(test.outputBecomes(expected, "first"));
    window.fillRectangle({0, 20, 400, 10}, 0xFF123456);
    std::fill_n(expected.pixels.begin() + 8000, 4000, 0xFF123456U);
    ASSERT_TRUE(test.outputBecomes(expected, "changed"));
    test.stop();
    test.connection->synchronize();
    window.fillRectangle({0, 20, 400, 10}, 0xFF00FF00);
    expose(test, {1400, 100, 400, 300});
    EXPECT_TRUE(test.outputBecomes(expected, "drawn again"));
}

TEST_P(WindowCapture, FollowsAResize) {
    TestWindow window(displayName(), source());
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(window.id()));
    ASSERT_TRUE(test.outputBecomes(pattern(400, 300), "before"));
    window.resize(300, 300);
    // Fitted and centred: bars of 50 pixels on both sides.
    PixelImage expected{400, 300, std::vector<std::uint32_t>(400UL * 300, 0xFF000000U)};
    for (int y = 0; y < 300; ++y) {
        for (int x = 0; x < 300; ++x)
            expected.pixels[static_cast<std::size_t>(y * 400 + x + 50)] =
                TestWindow::patternAt(x, y);
    }
    EXPECT_TRUE(test.outputBecomes(expected, "narrower"));
}

TEST_P(WindowCapture, KeepsItsPictureWhileUnmappedAndGoesOnAfterwards) {
    TestWindow window(displayName(), source());
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(window.id()));
    auto expected = pattern(400, 300);
    ASSERT_TRUE(test.outputBecomes(expected, "mapped"));
    window.unmap();
    test.settle();
    EXPECT_TRUE(test.outputBecomes(expected, "unmapped"));
    window.show();
    window.fillRectangle({0, 0, 400, 10}, 0xFF123456);
    std::fill_n(expected.pixels.begin(), 4000, 0xFF123456U);
    EXPECT_TRUE(test.outputBecomes(expected, "mapped again"));
    EXPECT_TRUE(test.stops.empty());
}

TEST_P(WindowCapture, StaysLiveWhileACompositorComesAndGoes) {
    TestWindow window(displayName(), source());
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(window.id()));
    auto expected = pattern(400, 300);
    ASSERT_TRUE(test.outputBecomes(expected, "before"));
    test.desktop.stopCompositor();
    window.fillRectangle({0, 0, 400, 10}, 0xFF123456);
    std::fill_n(expected.pixels.begin(), 4000, 0xFF123456U);
    EXPECT_TRUE(test.outputBecomes(expected, "without"));
    test.desktop.startCompositor();
    window.fillRectangle({0, 10, 400, 10}, 0xFF654321);
    std::fill_n(expected.pixels.begin() + 4000, 4000, 0xFF654321U);
    EXPECT_TRUE(test.outputBecomes(expected, "with"));
}

TEST_P(WindowCapture, ReportsThatTheWindowWasClosed) {
    TestWindow window(displayName(), source());
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(window.id()));
    test.settle();
    window.destroy();
    EXPECT_TRUE(test.loop.spinUntil([&] { return !test.stops.empty(); }));
    EXPECT_EQ(test.stops.size(), 1U);
}

TEST_P(WindowCapture, ReportsThatTheProgramCrashed) {
    TestWindow window(displayName(), source());
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(window.id()));
    test.settle();
    window.disconnect();
    EXPECT_TRUE(test.loop.spinUntil([&] { return !test.stops.empty(); }));
}

TEST_P(WindowCapture, LeavesOutTheShadowThatAProgramDraws) {
    TestWindow window(displayName(), source());
    window.setProperty("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {10, 20, 30, 40});
    test.openOutput({1400, 100, 370, 230});
    test.start(WindowFilter(window.id()));
    EXPECT_TRUE(test.outputBecomes(pattern(400, 300).part(10, 30, 370, 230), "without shadow"));
}

TEST_P(WindowCapture, ShowsATransparentWindowOnBlack) {
    const TestWindow window(displayName(),
                            {.geometry = {100, 80, 400, 300}, .depth = 32, .color = 0x80402010});
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(window.id()));
    const PixelImage expected{400, 300, std::vector<std::uint32_t>(400UL * 300, 0xFF402010U)};
    EXPECT_TRUE(test.outputBecomes(expected, "transparent"));
}

TEST_P(WindowCapture, ShowsWhatAShapeLeavesOnBlack) {
    TestWindow window(displayName(), source());
    window.setShape({{0, 0, 200, 300}});
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(window.id()));
    auto expected = pattern(400, 300);
    for (int y = 0; y < 300; ++y)
        std::fill_n(expected.pixels.begin() + y * 400 + 200, 200, 0xFF000000U);
    EXPECT_TRUE(test.outputBecomes(expected, "shaped"));
}

TEST_P(WindowCapture, ShowsTheCursorOnlyOverTheWindowItself) {
    const TestWindow window(displayName(), {.geometry = {100, 80, 400, 300}, .color = 0xFFFFFFFF});
    test.openOutput({1400, 100, 400, 300});
    test.desktop.server().movePointer(300, 250);
    test.start(WindowFilter(window.id()), CaptureDesktop::configurationAt(60, true));
    const auto hasCursor = [&] {
        return std::ranges::count(test.output().pixels, 0xFFFFFFFFU) < 400 * 300;
    };
    EXPECT_TRUE(test.loop.spinUntil(hasCursor));
    const TestWindow cover(displayName(), {.geometry = {0, 0, 900, 700}, .overrideRedirect = true});
    test.desktop.server().movePointer(302, 252);
    EXPECT_TRUE(test.loop.spinUntil([&] { return !hasCursor(); }));
}

TEST_P(WindowCapture, FailsForAWindowThatIsNotThere) {
    const auto stream =
        test.capture->makeStream(WindowFilter(0x00DEAD00), CaptureDesktop::configurationAt(60), {});
    EXPECT_FALSE(test.outcomeOfStarting(*stream));
}

TEST_P(WindowCapture, GoesFromOneWindowToAnotherOnOneStream) {
    const TestWindow first(displayName(), source());
    const TestWindow second(displayName(), {.geometry = {600, 80, 400, 300}, .color = 0xFF00AA77});
    test.openOutput({1400, 100, 400, 300});
    test.start(WindowFilter(first.id()));
    ASSERT_TRUE(test.outputBecomes(pattern(400, 300), "first"));
    test.retarget(WindowFilter(second.id()));
    const PixelImage expected{400, 300, std::vector<std::uint32_t>(400UL * 300, 0xFF00AA77U)};
    EXPECT_TRUE(test.outputBecomes(expected, "second"));
}

/// At which step of a compositor's coming the stream starts.
enum class Begins { before, underItsOverlay, afterwards };

class WindowCaptureAndANewCompositor : public testing::TestWithParam<Begins> {};

INSTANTIATE_TEST_SUITE_P(Moments, WindowCaptureAndANewCompositor,
                         testing::Values(Begins::before, Begins::underItsOverlay,
                                         Begins::afterwards));

// Until a compositor has redirected the windows that its overlay covers, their pixels cannot be
// read from the screen: reading them then shows the overlay, whatever they hold.
TEST_P(WindowCaptureAndANewCompositor, StaysLiveThroughItsComingAndGoing) {
    CaptureDesktop test({.windowManager = WindowManager::openbox});
    TestWindow window(test.desktop.displayName(),
                      {.geometry = {100, 80, 400, 300}, .color = 0xFF00AA77});
    test.openOutput({1400, 100, 400, 300});
    auto* const compositor = test.desktop.connection();
    const auto root = test.desktop.root();
    const auto showsWhole = [&](Color color, std::string_view name) {
        window.fillRectangle({0, 0, 400, 300}, color);
        const PixelImage expected{400, 300, std::vector<std::uint32_t>(400UL * 300, color)};
        return test.outputBecomes(expected, name);
    };

    if (GetParam() == Begins::before) {
        test.start(WindowFilter(window.id()));
        ASSERT_TRUE(showsWhole(0xFF112233, "before"));
    }
    const auto asked = xcb_composite_get_overlay_window(compositor, root);
    const Reply overlay(xcb_composite_get_overlay_window_reply(compositor, asked, nullptr));
    ASSERT_TRUE(overlay);
    if (GetParam() == Begins::underItsOverlay) {
        test.start(WindowFilter(window.id()));
        test.settle();
    }
    const Reply<xcb_generic_error_t> error(
        xcb_request_check(compositor, xcb_composite_redirect_subwindows_checked(
                                          compositor, root, XCB_COMPOSITE_REDIRECT_MANUAL)));
    ASSERT_FALSE(error);
    if (GetParam() == Begins::afterwards)
        test.start(WindowFilter(window.id()));
    const PixelImage now{400, 300,
                         std::vector<std::uint32_t>(
                             400UL * 300, GetParam() == Begins::before ? 0xFF112233 : 0xFF00AA77)};
    EXPECT_TRUE(test.outputBecomes(now, "redirected"));
    EXPECT_TRUE(showsWhole(0xFF445566, "drawn while redirected"));

    xcb_composite_unredirect_subwindows(compositor, root, XCB_COMPOSITE_REDIRECT_MANUAL);
    xcb_composite_release_overlay_window(compositor, root);
    sync(compositor);
    EXPECT_TRUE(showsWhole(0xFF778899, "without it again"));
    EXPECT_TRUE(test.stops.empty());
}

} // namespace
} // namespace kestrove::test
