#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/TemporaryFolder.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/ApplicationFixture.h"
#include "Tests/X11/Application/Paths.h"

#include <algorithm>
#include <csignal>

namespace kestrove::test {
namespace {

constexpr auto sharing = "kestrove.autoStart=true\n";

class End : public ApplicationFixture {
protected:
    /// As the window's own button does, through the window manager.
    void closeWindow() {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window();
        message.type = server.atom("_NET_CLOSE_WINDOW");
        xcb_send_event(desktop.connection(), 0, desktop.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
        sync(desktop.connection());
    }

    /// Not by a crash, whatever it says.
    [[nodiscard]] bool endsInOrder() {
        return program().waitForExit(patience) && *program().exitCode() < 128;
    }
};

TEST_F(End, ComesWithTheWindow) {
    start("");
    ASSERT_TRUE(showsPlaceholder("idle"));
    closeWindow();
    EXPECT_TRUE(endsWith(0));
}

TEST_F(End, ComesWithTheWindowWhileSharing) {
    start(sharing);
    ASSERT_TRUE(shows(left, "sharing"));
    closeWindow();
    EXPECT_TRUE(endsWith(0));
}

TEST_F(End, ComesWithTheSignalsOfTheSystem) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        start(sharing);
        ASSERT_TRUE(shows(left, "sharing"));
        program().signal(signal);
        EXPECT_TRUE(endsWith(0)) << "signal " << signal;
    }
}

TEST_F(End, IsInOrderWhenTheServerDies) {
    start("");
    ASSERT_TRUE(showsPlaceholder("idle"));
    server.kill();
    EXPECT_TRUE(endsInOrder()) << program().logTail();
}

TEST_F(End, IsInOrderWhenTheServerDiesWhileSharing) {
    start(sharing);
    ASSERT_TRUE(shows(left, "sharing"));
    server.kill();
    EXPECT_TRUE(endsInOrder()) << program().logTail();
}

TEST(WithoutAServer, SaysSoInALineAndEnds) {
    const TemporaryFolder folder;
    for (const std::string display : {"DISPLAY=", "DISPLAY=:65000", "DISPLAY=nonsense"}) {
        const auto log = folder.path() / "log";
        std::filesystem::remove(log);
        ChildProcess program({.command = {programPath()},
                              .environment = {display, "XDG_CONFIG_HOME=" + folder.path().string()},
                              .log = log,
                              .keptDescriptors = {}});
        ASSERT_TRUE(program.waitForExit(patience)) << display;
        EXPECT_EQ(program.exitCode(), 1) << display;
        const auto said = contentOf(log);
        EXPECT_TRUE(said.starts_with("kestrove: ")) << said;
        EXPECT_EQ(std::ranges::count(said, '\n'), 1) << said;
    }
}

} // namespace
} // namespace kestrove::test
