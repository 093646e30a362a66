// Windows that do not say whose they are, on servers that know it and on servers that do not.

#include "Tests/Support/Processes/LinePipe.h"
#include "Tests/Support/Processes/TemporaryFolder.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/X11/Desktop/X11Fixture.h"

#include "Platform/X11/WindowIdentity/WindowIdentity.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace kestrove::x11 {
namespace {

/// A server that is started with these words, and our connection to it.
struct PlainServer {
    explicit PlainServer(const std::vector<std::string>& words) {
        std::vector<std::string> command{"Xvfb", "-displayfd", std::to_string(number.writeEnd()),
                                         "-noreset", "-ac"};
        command.insert(command.end(), words.begin(), words.end());
        process.emplace(test::ChildProcess::Options{.command = command,
                                                    .environment = {},
                                                    .log = folder.path() / "Xvfb.log",
                                                    .keptDescriptors = {number.writeEnd()}});
        displayName = ":" + number.readLine();
        connection = std::move(*Connection::open(loop, loop, displayName));
    }

    [[nodiscard]] std::optional<ProcessID> processOf(const test::TestWindow& window) {
        const std::vector<ClientWindow> asked{{window.id(), window.id()}};
        return readIdentities(*connection, asked).front().processID;
    }

    test::TemporaryFolder folder;
    test::LinePipe number;
    std::optional<test::ChildProcess> process;
    std::string displayName;
    PollMainLoop loop;
    std::unique_ptr<Connection> connection;
};

TEST(ClientProcesses, AreUnknownToAServerThatCannotTell) {
    PlainServer server({"-nolisten", "tcp", "-extension", "X-Resource"});
    ASSERT_FALSE(server.connection->extensions().tellsProcesses);
    test::TestWindow window(server.displayName, {});
    EXPECT_EQ(server.processOf(window), getpid()) << "it says so itself";
    window.removeProperty("_NET_WM_PID");
    EXPECT_EQ(server.processOf(window), std::nullopt);
    EXPECT_TRUE(server.connection->isOpen());
}

TEST(ClientProcesses, AreUnknownOfConnectionsOverTheNetwork) {
    PlainServer server({"-listen", "tcp"});
    ASSERT_TRUE(server.connection->extensions().tellsProcesses);
    test::TestWindow near(server.displayName, {});
    test::TestWindow far("127.0.0.1" + server.displayName, {});
    for (auto* const window : {&near, &far})
        window->removeProperty("_NET_WM_PID");
    EXPECT_EQ(server.processOf(near), getpid());
    EXPECT_EQ(server.processOf(far), std::nullopt);
}

TEST(ClientProcesses, AreNotBelievedOfAServerThatNumbersProcessesInItsOwnWay) {
    // Reached over the network, it does not know our own process, either.
    PlainServer server({"-listen", "tcp"});
    const auto connection =
        Connection::open(server.loop, server.loop, "127.0.0.1" + server.displayName);
    ASSERT_TRUE(connection);
    test::TestWindow window(server.displayName, {});
    window.removeProperty("_NET_WM_PID");
    const std::vector<ClientWindow> asked{{window.id(), window.id()}};
    EXPECT_EQ(readIdentities(**connection, asked).front().processID, std::nullopt);
}

class ClientProcessesTest : public X11Fixture {};

/// A window of a process that has its connection from another one, which has ended.
struct LeftWindow {
    pid_t opener = 0;
    pid_t owner = 0;
    xcb_window_t window = XCB_WINDOW_NONE;
};

LeftWindow leaveWindow(const std::string& displayName) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        test::giveUp("no pipe");
    LeftWindow left;
    left.opener = fork();
    if (left.opener == 0) {
        auto* const connection = xcb_connect(displayName.c_str(), nullptr);
        const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        left.window = xcb_generate_id(connection);
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, left.window, screen->root, 0, 0, 300,
                          200, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_map_window(connection, left.window);
        std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
        left.owner = fork();
        if (left.owner == 0) {
            while (auto* const event = xcb_wait_for_event(connection))
                std::free(event);
            _exit(0); // with the server
        }
        (void)!write(ends[1], &left, sizeof left);
        _exit(0);
    }
    close(ends[1]);
    const auto opener = left.opener;
    if (read(ends[0], &left, sizeof left) != sizeof left)
        test::giveUp("no window was left");
    close(ends[0]);
    left.opener = opener;
    waitpid(opener, nullptr, 0);
    return left;
}

TEST_F(ClientProcessesTest, AreUnknownOnceTheProcessThatConnectedHasEnded) {
    const auto left = leaveWindow(desktop.displayName());
    const std::vector<ClientWindow> asked{{left.window, left.window}};
    const auto identities = readIdentities(*connection, asked);
    EXPECT_EQ(kill(left.owner, SIGKILL), 0);
    ASSERT_EQ(identities.size(), 1U) << "the window is there";
    EXPECT_EQ(identities.front().processID, std::nullopt);
}

} // namespace
} // namespace kestrove::x11
