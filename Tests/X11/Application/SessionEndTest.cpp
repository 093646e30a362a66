// The end of the user's session, told by the desktop's session manager.

#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/SessionManager/SessionManager.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/X11/Application/Paths.h"
#include "Tests/X11/Application/TrayFixture.h"

#include <algorithm>
#include <functional>

namespace kestrove::test {
namespace {

/// The program of a session. With a tray it stays when its window is closed; without one it does
/// not.
class SessionEnd : public TrayFixture {
protected:
    SessionEnd() {
        meanwhile = [this] { manager.serve(); };
    }

    void share() {
        server.movePointer(1900, 780);
        writeSettings("kestrove.autoStart=true\n" + onlyDisplay("LEFT"));
        start({"env", manager.environment(), programPath()});
        ASSERT_TRUE(shows(left, "the left display"));
        ASSERT_TRUE(served([this] { return manager.savedCount() == 1; }))
            << "no program has registered";
    }

    [[nodiscard]] bool served(const std::function<bool()>& condition) {
        return waitUntil([&] {
            manager.serve();
            return condition();
        });
    }
    [[nodiscard]] bool savesForTheEnd() {
        const int before = manager.savedCount();
        manager.endSession();
        return served([&] { return manager.savedCount() > before; });
    }
    /// It is told to end, and does so.
    [[nodiscard]] testing::AssertionResult ends() {
        manager.die();
        if (!served([this] { return !program().isRunning(); }))
            return testing::AssertionFailure() << "it goes on: " << program().logTail();
        return endsWith(0);
    }

    SessionManager manager;
};

TEST_F(SessionEnd, EndsTheProgramThatShares) {
    ASSERT_NO_FATAL_FAILURE(share());
    ASSERT_TRUE(savesForTheEnd());
    EXPECT_TRUE(ends());
    EXPECT_FALSE(manager.hasProgram());
}

TEST_F(SessionEnd, EndsTheProgramInATrayWithItsOutputHidden) {
    startTray("top", "right", rightPlace);
    ASSERT_NO_FATAL_FAILURE(share());
    pressTogether(desktop.connection(), {ServerKey::control, ServerKey::super, ServerKey::h});
    ASSERT_TRUE(hasSaved("kestrove.hideOutputWindow=true"));
    ASSERT_TRUE(savesForTheEnd());
    EXPECT_TRUE(ends());
    EXPECT_TRUE(contentOf(settingsFile()).contains("kestrove.hideOutputWindow=true"));
    EXPECT_TRUE(contentOf(settingsFile()).contains("kestrove.followMode=manual"));
}

TEST_F(SessionEnd, EndsTheProgramWithItsWindowsOpen) {
    startTray("top", "right", rightPlace);
    ASSERT_NO_FATAL_FAILURE(share());
    pressTogether(desktop.connection(), {ServerKey::control, ServerKey::super, ServerKey::p});
    ASSERT_TRUE(waitUntil([this] { return find("kestrove — ソース選択") != XCB_WINDOW_NONE; }));
    ASSERT_TRUE(savesForTheEnd());
    EXPECT_TRUE(ends());
}

TEST_F(SessionEnd, ThatIsCalledOffLeavesTheProgramSharing) {
    startTray("top", "right", rightPlace);
    ASSERT_NO_FATAL_FAILURE(share());
    ASSERT_TRUE(savesForTheEnd());
    manager.cancelEnd();
    left.paint({10, 10, 300, 100}, 0xff1188aa);
    EXPECT_TRUE(shows(left, "still live"));
    EXPECT_TRUE(isOutputSeen());
    ASSERT_TRUE(savesForTheEnd()) << "at the next time";
    EXPECT_TRUE(ends());
}

TEST_F(SessionEnd, LeavesACommandThatStartsTheProgramAgain) {
    ASSERT_NO_FATAL_FAILURE(share());
    const auto command = manager.property("RestartCommand");
    ASSERT_FALSE(command.empty());
    EXPECT_EQ(command.front(), programPath());
    ASSERT_TRUE(savesForTheEnd());
    EXPECT_TRUE(ends());
    start(command);
    EXPECT_TRUE(shows(left, "as the user left it"));
}

} // namespace
} // namespace kestrove::test
