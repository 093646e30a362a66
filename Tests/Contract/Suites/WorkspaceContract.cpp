#include "Tests/Contract/ContractSuites.h"

#include <vector>

namespace kestrove::contract {

TEST_P(WorkspaceContract, TheFrontmostApplicationIsTheOneWithTheFocus) {
    EXPECT_FALSE(desktop().workspace().frontmostApplication());
    const auto painter = desktop().startApplication("painter");
    const auto editor = desktop().startApplication("editor");
    const auto first = desktop().openWindow({.processID = painter});
    const auto second = desktop().openWindow({.processID = editor});
    const auto isFrontmost = [&](ProcessID process) {
        const auto frontmost = desktop().workspace().frontmostApplication();
        return frontmost && frontmost->processID == process;
    };
    desktop().focusWindow(first);
    EXPECT_TRUE(waitUntil([&] { return isFrontmost(painter); }));
    desktop().focusWindow(second);
    EXPECT_TRUE(waitUntil([&] { return isFrontmost(editor); }));
    desktop().focusNothing();
    EXPECT_TRUE(waitUntil([&] { return !desktop().workspace().frontmostApplication(); }));
}

TEST_P(WorkspaceContract, TellsWhichApplicationCameToTheFront) {
    const auto painter = desktop().startApplication("painter");
    const auto first = desktop().openWindow({.processID = painter});
    const auto second = desktop().openWindow({.processID = painter});
    std::vector<ProcessID> told;
    const auto subscription = desktop().workspace().onApplicationActivated(
        [&](const auto& application) { told.push_back(application.processID); });
    desktop().focusWindow(first);
    EXPECT_TRUE(told.empty()) << "only the main loop tells";
    ASSERT_TRUE(waitUntil([&] { return !told.empty(); }));
    desktop().focusWindow(second);
    desktop().settle();
    EXPECT_EQ(told, std::vector{painter}) << "another window, the same application";
}

TEST_P(WorkspaceContract, KnowsARunningApplicationByItsProcess) {
    const auto painter = desktop().startApplication("painter");
    desktop().openWindow({.processID = painter});
    ASSERT_TRUE(
        waitUntil([&] { return desktop().workspace().runningApplication(painter).has_value(); }));
    EXPECT_EQ(desktop().workspace().runningApplication(painter)->processID, painter);
}

TEST_P(WorkspaceContract, TellsOnceOfAnApplicationThatEnded) {
    const auto painter = desktop().startApplication("painter");
    const auto editor = desktop().startApplication("editor");
    desktop().openWindow({.processID = painter});
    desktop().openWindow({.processID = painter});
    desktop().openWindow({.processID = editor});
    std::vector<ProcessID> told;
    const auto subscription = desktop().workspace().onApplicationTerminated(
        [&](const auto& application) { told.push_back(application.processID); });
    desktop().settle();
    desktop().endApplication(painter);
    ASSERT_TRUE(waitUntil([&] { return !told.empty(); }));
    EXPECT_FALSE(desktop().workspace().runningApplication(painter));
    desktop().settle();
    EXPECT_EQ(told, std::vector{painter});
    EXPECT_TRUE(desktop().workspace().runningApplication(editor));
}

TEST_P(WorkspaceContract, AClosedWindowIsNoEndOfItsApplication) {
    const auto painter = desktop().startApplication("painter");
    const auto window = desktop().openWindow({.processID = painter});
    int told = 0;
    const auto subscription =
        desktop().workspace().onApplicationTerminated([&](const auto&) { ++told; });
    desktop().settle();
    desktop().closeWindow(window);
    desktop().settle();
    EXPECT_EQ(told, 0);
    EXPECT_TRUE(desktop().workspace().runningApplication(painter));
}

TEST_P(SessionContract, TellsOfLocksAndOfSleep) {
    std::vector<std::string> told;
    auto& workspace = desktop().workspace();
    const std::vector subscriptions = [&] {
        std::vector<Subscription> made;
        made.push_back(workspace.onSessionResignedActive([&] { told.emplace_back("resigned"); }));
        made.push_back(workspace.onSessionBecameActive([&] { told.emplace_back("active"); }));
        made.push_back(workspace.onScreensSlept([&] { told.emplace_back("slept"); }));
        made.push_back(workspace.onScreensWoke([&] { told.emplace_back("woke"); }));
        return made;
    }();
    desktop().lockSession();
    EXPECT_TRUE(told.empty()) << "only the main loop tells";
    EXPECT_TRUE(waitUntil([&] { return told == std::vector<std::string>{"resigned"}; }));
    desktop().unlockSession();
    EXPECT_TRUE(waitUntil([&] { return told.size() == 2 && told.back() == "active"; }));
    desktop().sleepScreens();
    EXPECT_TRUE(waitUntil([&] { return told.size() == 3 && told.back() == "slept"; }));
    desktop().wakeScreens();
    EXPECT_TRUE(waitUntil([&] { return told.size() == 4 && told.back() == "woke"; }));
}

} // namespace kestrove::contract
