#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/X11/Application/ApplicationFixture.h"

namespace kestrove::test {
namespace {

constexpr auto shareWhatThePointerIsOn = "kestrove.autoStart=true\n"
                                         "kestrove.followMode=mouse\n";

/// With a window manager, and without any.
class Following : public ApplicationFixture, public testing::WithParamInterface<WindowManager> {
protected:
    Following()
        : ApplicationFixture(GetParam()) {}

    /// What others read of the window is not yet what the user sees of it. Asked first: their
    /// reading brings it to the screen.
    [[nodiscard]] testing::AssertionResult isOnTheScreen(const PaintedDisplay& display) {
        PixelImage seen;
        const auto expected = display.picture();
        (void)waitUntil([&] {
            seen = readPixels(desktop.connection(), desktop.root(), outputPlace());
            return areAlike(seen, expected, 0);
        });
        return samePixels(seen, expected, "the screen");
    }
};

INSTANTIATE_TEST_SUITE_P(Desks, Following,
                         testing::Values(WindowManager::openbox, WindowManager::none),
                         [](const auto& tested) {
                             return tested.param == WindowManager::none ? "Bare" : "Openbox";
                         });

TEST_P(Following, ShowsTheDisplayUnderThePointerWhereverTheOutputLies) {
    start(shareWhatThePointerIsOn);
    // It opens on the very display that it shows: what is seen is what lies beneath it.
    EXPECT_TRUE(shows(left, "opened on the shared display"));

    placeOutput({700, 60, leftPlace.width, leftPlace.height});
    ASSERT_EQ(outputPlace().width, leftPlace.width);
    EXPECT_TRUE(shows(left, "pixel by pixel"));
    left.paint({300, 250, 120, 45}, 0xff3060ff);
    EXPECT_TRUE(isOnTheScreen(left));
    EXPECT_TRUE(shows(left, "changed"));
    server.movePointer(210, 333);
    EXPECT_TRUE(shows(left, "pointer moved"));

    server.movePointer(1800, 770);
    EXPECT_TRUE(shows(right, "followed to the display beneath the output"));
    right.paint({680, 80, 200, 200}, 0xffff0000);
    EXPECT_TRUE(shows(right, "changed beneath the output"));

    server.movePointer(30, 500);
    EXPECT_TRUE(shows(left, "followed back"));
}

TEST_P(Following, GoesOnWithTheDisplayThatIsLeft) {
    server.movePointer(1800, 770);
    start(shareWhatThePointerIsOn);
    ASSERT_TRUE(shows(right, "before"));
    server.removeMonitor("RIGHT");
    EXPECT_TRUE(showsPlaceholder("unplugged"));
    press(Key::returnKey);
    // The pointer is nowhere now: the main display stands in.
    EXPECT_TRUE(shows(left, "the other display"));
}

class BareDesktop : public ApplicationFixture {
protected:
    BareDesktop()
        : ApplicationFixture(WindowManager::none) {}
};

TEST_F(BareDesktop, KeepsTheSidesRatioOnBlack) {
    start(shareWhatThePointerIsOn);
    ASSERT_TRUE(shows(left, "before"));
    // Without a window manager nobody keeps the window to the ratio.
    placeOutput({700, 20, 900, 500});
    EXPECT_TRUE(shows(left, "bars at the sides"));
    placeOutput({700, 20, 500, 700});
    EXPECT_TRUE(shows(left, "bars above and below"));
}

} // namespace
} // namespace kestrove::test
