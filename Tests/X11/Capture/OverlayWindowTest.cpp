#include "Platform/X11/Overlay/OverlayWindow.h"

#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Capture/CaptureFixture.h"

#include <algorithm>
#include <span>
#include <string>

namespace kestrove::test {
namespace {

struct Desk {
    WindowManager windowManager;
    Compositor compositor;
    const char* name;
};

constexpr Color green = 0xff34c759;
constexpr Color paper = 0xffffffff;
constexpr xcb_rectangle_t wholeLeft{0, 0, 1280, 800};

/// A frame on a white floor that covers both displays.
class OverlayWindowTest : public testing::TestWithParam<Desk> {
protected:
    OverlayWindowTest() { make(1); }

    void make(double pixelsPerPoint) {
        overlay =
            std::make_unique<x11::OverlayWindow>(*test.connection, *test.monitors, pixelsPerPoint);
        test.capture->neverCaptured().add(window());
    }

    [[nodiscard]] xcb_window_t window() const {
        return static_cast<xcb_window_t>(overlay->windowNumber());
    }

    /// `place` in pixels of the root; both displays are 800 high, the left one is the main one.
    void show(const xcb_rectangle_t& place) {
        overlay->setFrame({static_cast<double>(place.x),
                           static_cast<double>(800 - place.y - place.height),
                           static_cast<double>(place.width), static_cast<double>(place.height)});
        overlay->orderFrontRegardless();
    }

    /// Exact but for the corners, which are tested by themselves.
    [[nodiscard]] static bool isFramed(const PixelImage& image, int line, int corner) {
        for (int y = 0; y < image.height; ++y) {
            for (int x = 0; x < image.width; ++x) {
                const int fromSide = std::min(x, image.width - 1 - x);
                const int fromEnd = std::min(y, image.height - 1 - y);
                if (fromSide < corner && fromEnd < corner)
                    continue;
                const bool isLine = fromSide < line || fromEnd < line;
                if (image.pixel(x, y) != (isLine ? green : paper))
                    return false;
            }
        }
        return true;
    }

    [[nodiscard]] testing::AssertionResult becomesFramed(const xcb_rectangle_t& place, int line,
                                                         int corner) {
        if (test.loop.spinUntil([&] { return isFramed(test.screen(place), line, corner); }))
            return testing::AssertionSuccess();
        test.screen(place).writePng("not-framed.png");
        return testing::AssertionFailure() << "see not-framed.png";
    }

    [[nodiscard]] bool isOutside(const xcb_rectangle_t& place) {
        const auto image = test.screen(wholeLeft);
        for (int y = 0; y < image.height; ++y) {
            for (int x = 0; x < image.width; ++x) {
                const bool isIn = x >= place.x && x < place.x + place.width && y >= place.y &&
                                  y < place.y + place.height;
                if (!isIn && image.pixel(x, y) != paper)
                    return false;
            }
        }
        return true;
    }

    CaptureDesktop test{XDesktop::Options{.windowManager = GetParam().windowManager,
                                          .compositor = GetParam().compositor}};
    TestWindow floor{test.desktop.displayName(),
                     {.geometry = {0, 0, 2560, 800}, .color = paper, .overrideRedirect = true}};
    std::unique_ptr<x11::OverlayWindow> overlay;
};

INSTANTIATE_TEST_SUITE_P(Desks, OverlayWindowTest,
                         testing::Values(Desk{WindowManager::none, Compositor::none, "Bare"},
                                         Desk{WindowManager::openbox, Compositor::none, "Openbox"},
                                         Desk{WindowManager::openbox, Compositor::picom,
                                              "OpenboxAndPicom"}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST_P(OverlayWindowTest, FramesItsPlaceToThePixel) {
    for (const xcb_rectangle_t place :
         {xcb_rectangle_t{200, 150, 300, 200}, xcb_rectangle_t{1100, 100, 500, 333}, wholeLeft,
          xcb_rectangle_t{1280, 0, 1280, 800}}) {
        show(place);
        EXPECT_TRUE(becomesFramed(place, 4, 8)) << place.x;
    }
    overlay->orderOut();
    EXPECT_TRUE(test.loop.spinUntil([&] { return isOutside({0, 0, 0, 0}); }));
}

TEST_P(OverlayWindowTest, RoundsItsCorners) {
    const xcb_rectangle_t place{200, 150, 300, 200};
    show(place);
    ASSERT_TRUE(becomesFramed(place, 4, 8));
    // A compositor shows the smooth edges when it has learnt of them.
    const auto isMixed = [](Color color) { return color != green && color != paper; };
    const auto isSmooth = [&] { return std::ranges::any_of(test.screen(place).pixels, isMixed); };
    if (GetParam().compositor == Compositor::picom)
        EXPECT_TRUE(test.loop.spinUntil(isSmooth));
    else
        EXPECT_FALSE(isSmooth());
    const auto image = test.screen(place);
    for (const int x : {0, 299}) {
        for (const int y : {0, 199})
            EXPECT_EQ(image.pixel(x, y), paper);
    }
    // On the diagonal: outside, in the line, in the hole.
    EXPECT_EQ(image.pixel(1, 1), paper);
    EXPECT_EQ(image.pixel(4, 4), green);
    EXPECT_EQ(image.pixel(7, 7), paper);
    EXPECT_TRUE(isOutside(place)) << "a shadow";
}

TEST_P(OverlayWindowTest, IsAsManyPointsWideOnADesktopOfLargerScale) {
    make(2);
    const xcb_rectangle_t place{200, 150, 300, 200};
    show(place);
    EXPECT_TRUE(becomesFramed(place, 8, 16));
}

TEST_P(OverlayWindowTest, IsAllLineWhereThereIsNoRoomForAHole) {
    const xcb_rectangle_t place{200, 150, 7, 100};
    show(place);
    EXPECT_TRUE(test.loop.spinUntil([&] {
        const auto image = test.screen(place);
        return image.pixel(3, 50) == green && image.pixel(0, 50) == green &&
               image.pixel(6, 50) == green;
    }));
    show({200, 150, 1, 1});
    EXPECT_TRUE(test.loop.spinUntil([&] { return isOutside({200, 150, 1, 1}); }));
}

TEST_P(OverlayWindowTest, LetsThePointerThrough) {
    const TestWindow beneath(
        test.desktop.displayName(),
        {.geometry = {200, 150, 300, 200}, .color = paper, .overrideRedirect = true});
    show({200, 150, 300, 200});
    ASSERT_TRUE(becomesFramed({200, 150, 300, 200}, 4, 8));
    for (const xcb_point_t at : {xcb_point_t{201, 250}, xcb_point_t{350, 250}}) {
        test.desktop.server().movePointer(at.x, at.y);
        const Reply pointer(xcb_query_pointer_reply(
            test.desktop.connection(),
            xcb_query_pointer(test.desktop.connection(), test.desktop.root()), nullptr));
        EXPECT_EQ(pointer->child, beneath.id());
    }
}

TEST_P(OverlayWindowTest, IsOnNoPictureOfItsDisplay) {
    // Not left out by the filter: it is on no capture, whoever asks.
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0));
    const auto isGreen = [](Color color) { return color == green; };
    TestWindow beneath(
        test.desktop.displayName(),
        {.geometry = {150, 100, 400, 300}, .fill = WindowFill::pattern, .overrideRedirect = true});
    test.settleScreen(wholeLeft);
    const auto clean = test.screen(wholeLeft);
    ASSERT_TRUE(std::ranges::none_of(clean.pixels, isGreen));
    ASSERT_TRUE(test.outputBecomes(clean, "before"));
    for (const xcb_rectangle_t place :
         {xcb_rectangle_t{200, 150, 300, 200}, xcb_rectangle_t{300, 200, 300, 200}, wholeLeft}) {
        show(place);
        ASSERT_TRUE(test.loop.spinUntil([&] {
            return test.screen(wholeLeft).pixel(place.x + 1, place.y + place.height / 2) == green;
        }));
        test.settle();
        EXPECT_TRUE(test.outputBecomes(clean, "framed"));
    }
    // What is drawn under the line is shown.
    beneath.move(0, 0);
    beneath.fillRectangle({0, 100, 10, 10}, 0xFFFF0000);
    EXPECT_TRUE(test.loop.spinUntil([&] { return test.output().pixel(1, 105) == 0xFFFF0000; }));
    EXPECT_TRUE(std::ranges::none_of(test.output().pixels, isGreen));
}

TEST_P(OverlayWindowTest, IsOnNoPictureOfAWindowBeneathThatHangs) {
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0));
    TestWindow beneath(
        test.desktop.displayName(),
        {.geometry = {150, 100, 400, 300}, .fill = WindowFill::pattern, .overrideRedirect = true});
    test.settleScreen(wholeLeft);
    const auto clean = test.screen(wholeLeft);
    ASSERT_TRUE(test.outputBecomes(clean, "before"));
    beneath.hang();
    const xcb_rectangle_t place{300, 200, 300, 200};
    show(place);
    ASSERT_TRUE(test.loop.spinUntil([&] {
        return test.screen(wholeLeft).pixel(place.x + 1, place.y + place.height / 2) == green;
    }));
    test.settle();
    const auto framed = test.output();
    for (int y = 0; y < framed.height; ++y) {
        for (int x = 0; x < framed.width; ++x) {
            const bool isUnderFrame = x >= place.x && x < place.x + place.width && y >= place.y &&
                                      y < place.y + place.height;
            const bool isMissing = isUnderFrame && framed.pixel(x, y) == 0xff000000;
            ASSERT_TRUE(isMissing || framed.pixel(x, y) == clean.pixel(x, y)) << x << ", " << y;
        }
    }
    // And moved on beneath it.
    beneath.move(170, 100);
    test.settle();
    EXPECT_TRUE(
        std::ranges::none_of(test.output().pixels, [](Color color) { return color == green; }));
    // Its program comes to again.
    beneath.fillRectangle({100, 50, 150, 150}, 0xFFFF0000);
    EXPECT_TRUE(test.loop.spinUntil([&] {
        const auto now = test.output();
        return now.pixel(301, 250) == 0xFFFF0000 && now.pixel(330, 201) == 0xFFFF0000;
    }));
}

TEST_P(OverlayWindowTest, IsInNoListOfTheWindowManager) {
    const TestWindow managed(test.desktop.displayName(), {.geometry = {200, 150, 300, 200}});
    show({200, 150, 300, 200});
    test.settle();
    for (const auto* const name : {"_NET_CLIENT_LIST", "_NET_CLIENT_LIST_STACKING"}) {
        const Reply list(xcb_get_property_reply(
            test.desktop.connection(),
            xcb_get_property(test.desktop.connection(), 0, test.desktop.root(),
                             test.desktop.server().atom(name), XCB_ATOM_WINDOW, 0, 100),
            nullptr));
        const std::span windows(
            static_cast<const xcb_window_t*>(xcb_get_property_value(list.get())), list->value_len);
        EXPECT_EQ(std::ranges::count(windows, window()), 0);
    }
}

TEST_P(OverlayWindowTest, CostsNothingWhileNothingMoves) {
    show({200, 150, 300, 200});
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0));
    ASSERT_TRUE(becomesFramed({200, 150, 300, 200}, 4, 8));
    int events = 0;
    const auto counting = test.connection->events.subscribe([&](const auto&) { ++events; });
    // The window manager may still be making its windows.
    constexpr int moreThanItsStartTakes = 1000;
    for (int i = 0; i < moreThanItsStartTakes; ++i) {
        events = 0;
        if (!test.loop.spinUntil([&] { return events > 0; }, Seconds(0.5)))
            break;
    }
    const int frames = test.frames;
    const auto requests = test.requestCount();
    // The same place again, as the overlay says it at each look.
    overlay->setFrame({200, 450, 300, 200});
    EXPECT_FALSE(test.loop.spinUntil([&] { return events > 0; }, Seconds(3)));
    EXPECT_EQ(test.frames, frames);
    // The counting itself is one.
    EXPECT_EQ(test.requestCount() - requests, 1U);
}

TEST(OverlayWindowWithACompositorThatComesAndGoes, SmoothsItsEdgesWhileItRuns) {
    CaptureDesktop test(XDesktop::Options{.windowManager = WindowManager::openbox});
    const TestWindow floor(
        test.desktop.displayName(),
        {.geometry = {0, 0, 2560, 800}, .color = paper, .overrideRedirect = true});
    x11::OverlayWindow overlay(*test.connection, *test.monitors, 1);
    overlay.setFrame({200, 450, 300, 200});
    overlay.orderFrontRegardless();
    const auto isSmooth = [&] {
        const auto corner = test.screen({200, 150, 8, 8});
        return std::ranges::any_of(corner.pixels,
                                   [](Color color) { return color != green && color != paper; });
    };
    const auto isShown = [&] { return test.screen({200, 250, 1, 1}).pixel(0, 0) == green; };
    EXPECT_TRUE(test.loop.spinUntil([&] { return isShown() && !isSmooth(); }));
    test.desktop.startCompositor();
    EXPECT_TRUE(test.loop.spinUntil([&] { return isShown() && isSmooth(); }));
    test.desktop.stopCompositor();
    EXPECT_TRUE(test.loop.spinUntil([&] { return isShown() && !isSmooth(); }));
}

} // namespace
} // namespace kestrove::test
