#include "Platform/X11/Workspace/Workspace.h"
#include "Tests/X11/Desktop/X11Fixture.h"

#include <csignal>
#include <unistd.h>

namespace kestrove::x11 {
namespace {

class WorkspaceTest : public X11Fixture {
protected:
    explicit WorkspaceTest(test::WindowManager manager = test::WindowManager::none)
        : X11Fixture(manager) {}

    /// A process that stands for an application; its windows are ours but name it.
    std::unique_ptr<test::ChildProcess> startProgram() { return desktop.start({"sleep", "1000"}); }
    std::unique_ptr<test::TestWindow> windowOf(const test::ChildProcess& program,
                                               const std::string& className) {
        return makeWindow(
            {.className = className,
             .processIdentifier = static_cast<std::uint32_t>(program.processIdentifier())});
    }
    void activate(const test::TestWindow& window) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window.id();
        message.type = window.atom("_NET_ACTIVE_WINDOW");
        message.data.data32[0] = 2; // as a pager asks
        xcb_send_event(desktop.connection(), 0, desktop.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(desktop.connection());
    }

    Applications applications{DesktopEntries({})};
    SessionSignals session;
    Workspace workspace{*connection, loop, applications, session};
};

TEST_F(WorkspaceTest, KnowsTheApplicationsThatRun) {
    const auto program = startProgram();
    const auto window = windowOf(*program, "Viewer");
    const auto process = program->processIdentifier();
    EXPECT_EQ(workspace.runningApplication(process), (RunningApplication{process, "Viewer"}));
    // A process without windows is one that nobody can name.
    const auto other = startProgram();
    EXPECT_EQ(workspace.runningApplication(other->processIdentifier()),
              (RunningApplication{other->processIdentifier(), std::nullopt}));
    program->stop();
    EXPECT_EQ(workspace.runningApplication(process), std::nullopt);
    EXPECT_EQ(workspace.runningApplication(0), std::nullopt);
}

TEST_F(WorkspaceTest, CallsAProcessTheSameForAllItsLife) {
    const auto program = startProgram();
    const auto process = program->processIdentifier();
    auto writer = windowOf(*program, "office-writer");
    const auto table = windowOf(*program, "office-table");
    ASSERT_LT(writer->id(), table->id());
    EXPECT_EQ(workspace.runningApplication(process)->bundleIdentifier, "office-writer");
    writer->destroy();
    EXPECT_EQ(workspace.runningApplication(process)->bundleIdentifier, "office-writer");
    const auto clients = readClientList(*connection);
    const auto identities = readIdentities(*connection, *clients);
    ASSERT_EQ(identities.size(), 1U);
    const auto owner = applications.owner(identities.front());
    EXPECT_EQ(owner->bundleIdentifier, "office-writer");
    EXPECT_EQ(owner->applicationName, "office-table");
    EXPECT_EQ(owner->processID, process);
}

TEST_F(WorkspaceTest, FindsTheFrontmostApplicationWithoutAWindowManager) {
    const auto program = startProgram();
    const auto window = windowOf(*program, "Viewer");
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    xcb_set_input_focus(desktop.connection(), XCB_INPUT_FOCUS_PARENT, window->id(),
                        XCB_CURRENT_TIME);
    xcb_flush(desktop.connection());
    EXPECT_TRUE(loop.spinUntil([&] { return workspace.frontmostApplication().has_value(); }));
    EXPECT_EQ(workspace.frontmostApplication()->bundleIdentifier, "Viewer");
}

TEST_F(WorkspaceTest, TellsWhoComesToTheFrontWithoutAWindowManager) {
    const auto first = startProgram();
    const auto second = startProgram();
    const auto before = windowOf(*first, "First");
    settle();
    std::vector<RunningApplication> activated;
    const auto subscription =
        workspace.onApplicationActivated([&](const auto& each) { activated.push_back(each); });
    // Windows that were there, and windows that come later; the focus may be inside of them.
    const auto later = windowOf(*second, "Second");
    auto* const server = later->connection();
    const auto inner = xcb_generate_id(server);
    xcb_create_window(server, XCB_COPY_FROM_PARENT, inner, later->id(), 5, 5, 20, 20, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(server, inner);
    const auto focus = [&](xcb_window_t window) {
        xcb_set_input_focus(server, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
        xcb_flush(server);
    };
    focus(before->id());
    EXPECT_TRUE(loop.spinUntil([&] { return activated.size() == 1; }));
    focus(inner);
    EXPECT_TRUE(loop.spinUntil([&] { return activated.size() == 2; }));
    focus(later->id());
    settle();
    focus(before->id());
    EXPECT_TRUE(loop.spinUntil([&] { return activated.size() == 3; }));
    EXPECT_EQ(activated, (std::vector<RunningApplication>{{first->processIdentifier(), "First"},
                                                          {second->processIdentifier(), "Second"},
                                                          {first->processIdentifier(), "First"}}));
}

TEST_F(WorkspaceTest, TellsOfEachApplicationThatEndsOnce) {
    std::vector<RunningApplication> ended;
    const auto before = startProgram();
    const auto windowBefore = windowOf(*before, "Before");
    const auto subscription =
        workspace.onApplicationTerminated([&](const auto& each) { ended.push_back(each); });
    const auto after = startProgram();
    const auto windowAfter = windowOf(*after, "After");
    const auto secondWindow = windowOf(*after, "After");
    settle();
    EXPECT_TRUE(ended.empty());
    after->signal(SIGKILL);
    EXPECT_TRUE(loop.spinUntil([&] { return !ended.empty(); }));
    before->stop();
    EXPECT_TRUE(loop.spinUntil([&] { return ended.size() == 2; }));
    settle();
    EXPECT_EQ(ended, (std::vector<RunningApplication>{{after->processIdentifier(), "After"},
                                                      {before->processIdentifier(), "Before"}}));
}

TEST_F(WorkspaceTest, TellsOfTheEndOfAnApplicationWhoseWindowsWereClosedBefore) {
    std::vector<RunningApplication> ended;
    const auto subscription =
        workspace.onApplicationTerminated([&](const auto& each) { ended.push_back(each); });
    const auto program = startProgram();
    const auto window = windowOf(*program, "Viewer");
    settle();
    window->destroy();
    settle();
    program->stop();
    EXPECT_TRUE(loop.spinUntil([&] { return ended.size() == 1; }));
    EXPECT_EQ(ended.front().bundleIdentifier, "Viewer");
}

TEST_F(WorkspaceTest, DoesNotTakeAZombieForARunningApplication) {
    const auto process = fork();
    if (process == 0)
        _exit(0);
    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOWAIT);
    int told = 0;
    const auto window = makeWindow({.processIdentifier = static_cast<std::uint32_t>(process)});
    const auto subscription = workspace.onApplicationTerminated([&](const auto&) { ++told; });
    settle();
    const auto another = makeWindow({.processIdentifier = static_cast<std::uint32_t>(process)});
    settle();
    EXPECT_EQ(told, 0);
    waitid(P_PID, static_cast<id_t>(process), &info, WEXITED);
}

TEST_F(WorkspaceTest, GoesOnFollowingAfterTheConnectionWasLost) {
    std::vector<RunningApplication> ended;
    const auto subscription =
        workspace.onApplicationTerminated([&](const auto& each) { ended.push_back(each); });
    const auto before = startProgram();
    const auto windowBefore = windowOf(*before, "Before");
    settle();
    loseConnection();
    EXPECT_EQ(workspace.frontmostApplication(), std::nullopt);
    ASSERT_TRUE(connection->reopen());
    const auto after = startProgram();
    const auto windowAfter = windowOf(*after, "After");
    settle();
    before->stop();
    after->stop();
    EXPECT_TRUE(loop.spinUntil([&] { return ended.size() == 2; }));
}

class ManagedWorkspaceTest : public WorkspaceTest {
protected:
    ManagedWorkspaceTest()
        : WorkspaceTest(test::WindowManager::openbox) {}
};

TEST_F(ManagedWorkspaceTest, TellsOfTheApplicationThatComesToTheFront) {
    const auto first = startProgram();
    const auto second = startProgram();
    const auto firstWindow = windowOf(*first, "First");
    const auto secondWindow = windowOf(*second, "Second");
    const auto isInFront = [&](const test::ChildProcess& program) {
        const auto frontmost = workspace.frontmostApplication();
        return frontmost && frontmost->processID == program.processIdentifier();
    };
    activate(*secondWindow);
    ASSERT_TRUE(loop.spinUntil([&] { return isInFront(*second); }));
    settle();

    std::vector<RunningApplication> activated;
    const auto subscription =
        workspace.onApplicationActivated([&](const auto& each) { activated.push_back(each); });
    activate(*firstWindow);
    EXPECT_TRUE(loop.spinUntil([&] { return !activated.empty(); }));
    EXPECT_TRUE(isInFront(*first));
    activate(*secondWindow);
    EXPECT_TRUE(loop.spinUntil([&] { return activated.size() == 2; }));
    EXPECT_EQ(activated,
              (std::vector<RunningApplication>{{first->processIdentifier(), "First"},
                                               {second->processIdentifier(), "Second"}}));
}

TEST_F(ManagedWorkspaceTest, IsSilentWhenAnotherWindowOfTheSameApplicationComesToTheFront) {
    const auto program = startProgram();
    const auto other = startProgram();
    const auto first = windowOf(*program, "Viewer");
    const auto second = windowOf(*program, "Viewer");
    const auto last = windowOf(*other, "Other");
    const auto isActive = [&](const test::TestWindow& window) {
        return readActiveWindow(*connection) == window.id();
    };
    activate(*first);
    ASSERT_TRUE(loop.spinUntil([&] { return isActive(*first); }));
    settle();
    std::vector<RunningApplication> activated;
    const auto subscription =
        workspace.onApplicationActivated([&](const auto& each) { activated.push_back(each); });
    activate(*second);
    ASSERT_TRUE(loop.spinUntil([&] { return isActive(*second); }));
    settle();
    activate(*last);
    EXPECT_TRUE(loop.spinUntil([&] { return !activated.empty(); }));
    EXPECT_EQ(activated.front().bundleIdentifier, "Other");
}

TEST_F(ManagedWorkspaceTest, TellsOfAnApplicationThatIsInFrontAgainAfterSomebodySawNone) {
    const auto program = startProgram();
    const auto window = windowOf(*program, "Viewer");
    activate(*window);
    ASSERT_TRUE(loop.spinUntil([&] { return workspace.frontmostApplication().has_value(); }));
    settle();
    std::vector<RunningApplication> activated;
    const auto subscription =
        workspace.onApplicationActivated([&](const auto& each) { activated.push_back(each); });
    window->unmap();
    ASSERT_TRUE(loop.spinUntil([&] { return !workspace.frontmostApplication(); }));
    window->show();
    activate(*window);
    EXPECT_TRUE(loop.spinUntil([&] { return activated.size() == 1; }));
    EXPECT_EQ(activated.front().bundleIdentifier, "Viewer");
}

TEST_F(ManagedWorkspaceTest, FollowsApplicationsByTheClientList) {
    std::vector<RunningApplication> ended;
    const auto subscription =
        workspace.onApplicationTerminated([&](const auto& each) { ended.push_back(each); });
    const auto program = startProgram();
    const auto window = windowOf(*program, "Viewer");
    ASSERT_TRUE(loop.spinUntil(
        [&] { return applications.bundleIdentifier(program->processIdentifier()) == "Viewer"; }));
    settle();
    program->stop();
    EXPECT_TRUE(loop.spinUntil([&] { return ended.size() == 1; }));
}

} // namespace
} // namespace kestrove::x11
