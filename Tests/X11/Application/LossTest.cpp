#include "Tests/Support/Processes/Waiting.h"
#include "Tests/X11/Application/ApplicationFixture.h"

namespace kestrove::test {
namespace {

class Loss : public ApplicationFixture {
protected:
    void share(std::string_view display) {
        start(onlyDisplay(display) + "kestrove.autoStart=true\n");
        ASSERT_TRUE(shows(right, "at first"));
    }

    /// Cuts the connection that captures and draws. The toolkit's own stays.
    void cutCaptureConnection() {
        const auto frames = frameWindow();
        ASSERT_NE(frames, 0U);
        xcb_kill_client(desktop.connection(), frames);
        xcb_flush(desktop.connection());
    }
};

TEST_F(Loss, OfTheSharedDisplayShowsThePlaceholderUntilItIsBack) {
    share("RIGHT");
    server.removeMonitor("RIGHT");
    EXPECT_TRUE(showsPlaceholder("unplugged"));
    server.setMonitor({"RIGHT", rightPlace});
    // No hand is as fast as the word of the display, which comes by another connection than keys.
    (void)settledPlace();
    press(Key::returnKey);
    EXPECT_TRUE(shows(right, "plugged in again"));
}

TEST_F(Loss, OfTheSharedDisplayEndsByItselfWhenItIsBack) {
    share("RIGHT");
    server.removeMonitor("RIGHT");
    EXPECT_TRUE(showsPlaceholder("unplugged"));
    server.setMonitor({"RIGHT", rightPlace});
    // The user picked it by hand, and the list of sources is read every few seconds.
    EXPECT_TRUE(shows(right, "plugged in again"));
}

TEST_F(Loss, OfTheOtherDisplayIsNotSeen) {
    share("RIGHT");
    server.movePointer(1800, 770);
    server.removeMonitor("LEFT");
    right.paint({10, 500, 300, 250}, 0xffffffff);
    EXPECT_TRUE(shows(right, "goes on"));
}

TEST_F(Loss, OfTheCaptureConnectionIsMendedByTheNextStart) {
    share("RIGHT");
    for (int time = 0; time < 2; ++time) {
        cutCaptureConnection();
        EXPECT_TRUE(showsPlaceholder("cut"));
        press(Key::returnKey);
        EXPECT_TRUE(shows(right, "shares again"));
        right.paint({static_cast<std::int16_t>(10 + 300 * time), 500, 200, 250}, 0xffffffff);
        EXPECT_TRUE(shows(right, "follows changes again"));
    }
    // Everything else has its connection again, too.
    server.movePointer(700, 70);
    EXPECT_TRUE(shows(right, "with the pointer"));
    server.removeMonitor("RIGHT");
    EXPECT_TRUE(showsPlaceholder("unplugged"));
}

TEST_F(Loss, OfTheCaptureConnectionDoesNotEndFollowing) {
    start("kestrove.autoStart=true\n");
    ASSERT_TRUE(shows(left, "at first"));
    cutCaptureConnection();
    EXPECT_TRUE(showsPlaceholder("cut"));
    press(Key::returnKey);
    EXPECT_TRUE(shows(left, "shares again"));
    server.movePointer(1800, 770);
    EXPECT_TRUE(shows(right, "follows again"));
}

} // namespace
} // namespace kestrove::test
