#include "Platform/X11/Capture/KeptContent.h"

#include "Tests/X11/Capture/CaptureFixture.h"

#include <cstdlib>
#include <xcb/composite.h>

namespace kestrove::test {
namespace {

constexpr xcb_rectangle_t onTheRight{1380, 100, 640, 400};

/// The output window's content, with captures running or not.
class KeptContent : public testing::Test {
protected:
    KeptContent() {
        test.capture->followStack([this](x11::WindowStack& stack) { return kept.follow(stack); });
        test.openOutput(onTheRight);
        kept.keep(test.outputWindow());
    }

    void share() { test.start(test.display(0)); }

    /// Whether it exists apart from the screen.
    [[nodiscard]] bool isKept() {
        auto* const xcb = test.desktop.connection();
        const auto pixmap = xcb_generate_id(xcb);
        auto* const error = xcb_request_check(
            xcb, xcb_composite_name_window_pixmap_checked(xcb, test.outputWindow(), pixmap));
        const bool isNamed = error == nullptr;
        std::free(error);
        if (isNamed)
            xcb_free_pixmap(xcb, pixmap);
        return isNamed;
    }
    [[nodiscard]] bool becomesKept() {
        return test.loop.spinUntil([this] { return isKept(); });
    }
    [[nodiscard]] bool becomesGivenUp() {
        return test.loop.spinUntil([this] { return !isKept(); });
    }
    [[nodiscard]] std::unique_ptr<TestWindow> cover(const xcb_rectangle_t& place) {
        return std::make_unique<TestWindow>(
            test.desktop.displayName(),
            TestWindow::Options{.geometry = place, .overrideRedirect = true});
    }

    CaptureDesktop test;
    x11::KeptContent kept{test.loop, *test.monitors, test.desktop.connection()};
};

TEST_F(KeptContent, IsKeptWhileNothingIsShared) {
    EXPECT_TRUE(isKept());
    share();
    EXPECT_TRUE(becomesGivenUp());
    test.stop();
    test.stream.reset();
    EXPECT_TRUE(becomesKept());
}

TEST_F(KeptContent, IsKeptWhereItIsCovered) {
    const TestWindow source(test.desktop.displayName(),
                            {.geometry = {0, 0, 1280, 800}, .overrideRedirect = true});
    share();
    ASSERT_TRUE(becomesGivenUp());
    const auto shown = test.output();
    {
        const auto above = cover({1500, 200, 200, 200});
        EXPECT_TRUE(becomesKept());
        EXPECT_TRUE(test.outputBecomes(shown, "covered"));
    }
    EXPECT_TRUE(becomesGivenUp());
    EXPECT_TRUE(test.outputBecomes(shown, "bare again"));
}

TEST_F(KeptContent, IsKeptWherePartOfItIsOutsideTheScreens) {
    share();
    ASSERT_TRUE(becomesGivenUp());
    test.moveOutput(onTheRight.x, 700);
    EXPECT_TRUE(becomesKept());
    test.moveOutput(onTheRight.x, 100);
    EXPECT_TRUE(becomesGivenUp());
}

TEST_F(KeptContent, IsKeptWhileItIsParked) {
    share();
    ASSERT_TRUE(becomesGivenUp());
    kept.setParked(true);
    EXPECT_TRUE(isKept()) << "before it leaves";
    kept.setParked(false);
    EXPECT_TRUE(becomesGivenUp());
}

} // namespace
} // namespace kestrove::test
