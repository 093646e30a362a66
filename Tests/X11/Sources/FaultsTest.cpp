// The desktop changes under a session: it goes on, or shares again when it is told to.

#include "Tests/X11/Sources/SourcesFixture.h"

#include <algorithm>

namespace kestrove::test {
namespace {

class Faults : public SourcesFixture {
protected:
    /// Stopped and started, it shows the left display again.
    void expectToShareAgain() {
        server().movePointer(30, 20);
        controller().stop();
        ASSERT_TRUE(reaches(CaptureSessionState::stopped()));
        controller().start();
        EXPECT_TRUE(reaches(CaptureSessionState::running()));
        EXPECT_TRUE(isActive(display("LEFT")));
        EXPECT_TRUE(shows(leftColor));
    }
};

TEST_F(Faults, AnotherWindowManagerTakesOver) {
    start();
    ASSERT_TRUE(shows(leftColor));
    desktop().stopWindowManager();
    EXPECT_TRUE(shows(leftColor));
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
    desktop().startWindowManager(WindowManager::openbox);
    EXPECT_TRUE(reaches(CaptureSessionState::running()));
    EXPECT_TRUE(shows(leftColor));
    expectToShareAgain();
}

TEST_F(Faults, ACompositorComesAndGoes) {
    start();
    ASSERT_TRUE(shows(leftColor));
    for (int round = 0; round < 2; ++round) {
        desktop().startCompositor();
        EXPECT_TRUE(shows(leftColor));
        desktop().stopCompositor();
        EXPECT_TRUE(shows(leftColor));
    }
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
    expectToShareAgain();
}

TEST_F(Faults, TheDisplaysChangeWhileTheSessionSwitches) {
    start();
    ASSERT_TRUE(shows(leftColor));
    for (int round = 0; round < 5; ++round) {
        server().movePointer(1300, 20);
        loop.advance(Seconds(0.15));
        // Whatever the switch is at by now.
        server().setMonitor({"RIGHT", {1280, 0, 1280, 600}});
        loop.advance(Seconds(0.01));
        server().setMonitor({"RIGHT", {1280, 0, 1280, 800}});
        server().movePointer(30, 20);
        loop.advance(Seconds(0.15));
    }
    EXPECT_TRUE(loop.runUntil([this] {
        return controller().sessionState().get() == CaptureSessionState::running() ||
               controller().recoveryGuidance().has_value();
    }));
    expectToShareAgain();
}

TEST_F(Faults, AThousandWindowsComeAndGoWhileTheSourcesAreListed) {
    start();
    const auto program = startProgram("Steady", {100, 300, 300, 200}, 0xff30a030);
    auto* const connection = desktop().connection();
    for (int count = 0; count < 1000; ++count) {
        const auto window = xcb_generate_id(connection);
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, desktop().root(),
                          static_cast<std::int16_t>(count % 900), 300, 320, 200, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_map_window(connection, window);
        if (count % 10 == 0) {
            xcb_flush(connection);
            controller().scheduleSourceRefresh();
            loop.advance(Seconds(0.001));
        }
        xcb_destroy_window(connection, window);
    }
    xcb_flush(connection);
    const auto listsTheSteadyOne = [&] {
        controller().scheduleSourceRefresh();
        const auto& windows = controller().availableSources().get().windows;
        return std::ranges::any_of(
            windows, [&](const auto& info) { return info.source == program.source(); });
    };
    EXPECT_TRUE(loop.runUntil(listsTheSteadyOne));
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
    expectToShareAgain();
}

} // namespace
} // namespace kestrove::test
