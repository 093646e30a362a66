// What the program lives on is short for a while: connections to the X server, room for files, the
// session's bus.

#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/ApplicationFixture.h"
#include "Tests/X11/Application/NotifierHost.h"
#include "Tests/X11/Application/Paths.h"

#include <algorithm>
#include <csignal>
#include <memory>
#include <sys/resource.h>
#include <vector>

namespace kestrove::test {
namespace {

class Shortage : public ApplicationFixture {
protected:
    explicit Shortage(SessionBus bus = SessionBus::none)
        : ApplicationFixture(WindowManager::openbox, bus) {}

    [[nodiscard]] bool hasSaved(std::string_view line) const {
        return waitUntil([&] { return contentOf(settingsFile()).contains(line); });
    }

    static constexpr int session = 1; ///< entries of the menu, texts not counted
    static constexpr int followFocus = 4;
};

/// Other programs have every connection that the X server can give.
class ShortageOfConnections : public Shortage {
protected:
    using Connection = std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)>;

    void takeAllConnections() {
        while (true) {
            Connection next(xcb_connect(desktop.displayName().c_str(), nullptr), &xcb_disconnect);
            if (xcb_connection_has_error(next.get()) != 0)
                return;
            m_others.push_back(std::move(next));
        }
    }

    std::vector<Connection> m_others;
};

TEST_F(ShortageOfConnections, IsMendedByTheFirstStartThatFindsOne) {
    start(onlyDisplay("RIGHT") + "kestrove.autoStart=true\n");
    ASSERT_TRUE(shows(right, "at first"));
    takeAllConnections();
    ASSERT_GT(m_others.size(), 50U);
    right.paint({10, 500, 200, 250}, 0xffffffff);
    EXPECT_TRUE(shows(right, "goes on with the connections that it has"));

    xcb_kill_client(desktop.connection(), frameWindow());
    sync(desktop.connection());
    takeAllConnections();
    EXPECT_TRUE(showsPlaceholder("cut"));
    press(Key::returnKey);
    // An alert has come up, which the user closes.
    EXPECT_TRUE(waitUntil([this] { return !hasFocus(); })) << program().logTail();
    EXPECT_TRUE(waitUntil([this] {
        if (!hasFocus())
            server.press(Key::escape);
        return hasFocus();
    }));
    EXPECT_TRUE(showsPlaceholder("no connection to be had"));
    EXPECT_TRUE(program().isRunning()) << program().logTail();

    m_others.clear();
    press(Key::returnKey);
    EXPECT_TRUE(shows(right, "shares again"));
    right.paint({210, 500, 200, 250}, 0xff00ffff);
    EXPECT_TRUE(shows(right, "follows changes again"));
}

/// No file can grow, as on a full disk.
class ShortageOfRoom : public Shortage {
protected:
    void startSharing() {
        writeSettings("kestrove.autoStart=true\nkestrove.followMode=mouse\n");
        // Told of a write that does not fit by its failure alone, as on a full disk.
        start({"sh", "-c", "trap '' XFSZ; exec \"$0\"", programPath()});
        ASSERT_TRUE(shows(left, "at first"));
    }
    void setRoom(rlim_t bytes) {
        rlimit limit{};
        ASSERT_EQ(prlimit(program().processIdentifier(), RLIMIT_FSIZE, nullptr, &limit), 0);
        limit.rlim_cur = std::min(bytes, limit.rlim_max);
        ASSERT_EQ(prlimit(program().processIdentifier(), RLIMIT_FSIZE, &limit, nullptr), 0);
    }
    void choose(int entry) {
        openMenuByKey();
        chooseFromMenu(entry);
        ASSERT_TRUE(waitUntil([this] { return !isMenuOpen(); }));
    }
};

TEST_F(ShortageOfRoom, LeavesTheSettingsInForceAndTheFileAsItWas) {
    ASSERT_NO_FATAL_FAILURE(startSharing());
    const auto before = contentOf(settingsFile());
    setRoom(0);
    constexpr int rightDisplay = 6;
    ASSERT_NO_FATAL_FAILURE(choose(rightDisplay));
    EXPECT_TRUE(shows(right, "picked by hand"));
    EXPECT_EQ(contentOf(settingsFile()), before);
    right.paint({10, 500, 200, 250}, 0xffffffff);
    EXPECT_TRUE(shows(right, "shares on"));

    setRoom(RLIM_INFINITY);
    ASSERT_NO_FATAL_FAILURE(choose(followFocus));
    EXPECT_TRUE(hasSaved("kestrove.followMode=focusedApp"));
    EXPECT_TRUE(hasSaved("kestrove.manualSources=[{\"display\"")) << "what did not fit then";
    program().signal(SIGTERM);
    EXPECT_TRUE(endsWith(0));
}

/// The session's message bus ends under the program, whose icon is in a tray there.
class ShortageOfABus : public Shortage {
protected:
    ShortageOfABus()
        : Shortage(SessionBus::own) {}
};

TEST_F(ShortageOfABus, IsNotSeenInWhatIsShared) {
    {
        NotifierHost tray(desktop.sessionBusAddress());
        meanwhile = [&tray] { tray.serve(); };
        start("kestrove.autoStart=true\nkestrove.followMode=mouse\n");
        meanwhile = nullptr;
        ASSERT_TRUE(tray.hasIcon()) << program().logTail();
        ASSERT_TRUE(shows(left, "at first"));
    }
    desktop.stopSessionBus();
    left.paint({20, 300, 100, 80}, 0xff00ff00);
    EXPECT_TRUE(shows(left, "shares on"));
    openMenuByKey();
    chooseFromMenu(session);
    EXPECT_TRUE(showsPlaceholder("stopped"));
    server.movePointer(20, 20);
    press(Key::returnKey);
    EXPECT_TRUE(shows(left, "started"));
    program().signal(SIGTERM);
    EXPECT_TRUE(endsWith(0)) << program().logTail();
}

} // namespace
} // namespace kestrove::test
