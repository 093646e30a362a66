#include "Tests/X11/Capture/CaptureFixture.h"

namespace kestrove::test {
namespace {

TestWindow::Options patterned(const xcb_rectangle_t& geometry) {
    return {.geometry = geometry, .fill = WindowFill::pattern, .overrideRedirect = true};
}

constexpr xcb_rectangle_t wholeLeft{0, 0, 1280, 800};

TEST(DisplayCapture, EqualsTheDisplayOneToOne) {
    CaptureDesktop test;
    const TestWindow window(test.desktop.displayName(), patterned({100, 80, 500, 400}));
    const TestWindow next(test.desktop.displayName(), patterned({1200, 100, 200, 200}));
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0));
    EXPECT_TRUE(test.outputBecomes(test.screen(wholeLeft), "display"));
}

TEST(DisplayCapture, FollowsAChangeAndDrawsNothingElse) {
    CaptureDesktop test;
    TestWindow window(test.desktop.displayName(), patterned({100, 80, 500, 400}));
    test.openOutput({1280, 0, 1280, 800});
    test.start(test.display(0));
    ASSERT_TRUE(test.outputBecomes(test.screen(wholeLeft), "before"));
    window.fillRectangle({10, 10, 50, 50}, 0xFF00FF00);
    EXPECT_TRUE(test.outputBecomes(test.screen(wholeLeft), "drawn"));
    window.move(300, 200);
    EXPECT_TRUE(test.outputBecomes(test.screen(wholeLeft), "moved"));
}

TEST(DisplayCapture, ShowsWhatLiesBeneathALeftOutWindow) {
    CaptureDesktop test;
    const TestWindow below(test.desktop.displayName(), patterned({50, 50, 600, 400}));
    const auto clean = test.screen(wholeLeft);
    test.openOutput({640, 0, 1280, 800});
    test.start(test.display(0, {test.outputWindow()}));
    EXPECT_TRUE(test.outputBecomes(clean, "beneath"));
}

TEST(DisplayCapture, CostsNothingWhileNothingChangesWithTheOutputOnTheDisplay) {
    CaptureDesktop test;
    const TestWindow below(test.desktop.displayName(), patterned({50, 50, 600, 400}));
    test.openOutput({200, 150, 640, 400});
    test.start(test.display(0, {test.outputWindow()}));
    test.settle();
    const int before = test.frames;
    int events = 0;
    const auto counting = test.connection->events.subscribe([&](const auto&) { ++events; });
    EXPECT_FALSE(test.loop.spinUntil([&] { return events > 0; }, Seconds(1)));
    EXPECT_EQ(test.frames, before);
    EXPECT_EQ(events, 0);
}

} // namespace
} // namespace kestrove::test
