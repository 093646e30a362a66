#include "Core/SourceLister/WindowServerExistenceChecker.h"

#include "Tests/Support/ScriptedDesktop/ScriptedFollowedDesktop.h"

#include <gtest/gtest.h>

#include <memory>

namespace kestrove {
namespace {

constexpr std::uint32_t withoutDesktopElements = 16;
constexpr ProcessID editor = 10;
constexpr auto identifier = "org.example.editor";
const ManualWindowSelection selection{5, {editor, identifier}};

class WindowServerExistenceCheckerTest : public testing::Test {
protected:
    WindowServerExistenceCheckerTest() {
        m_desktop.workspace.run(editor, identifier);
        windows() = {ScriptedFollowedDesktop::window(4, 99, {}),
                     ScriptedFollowedDesktop::window(5, editor, {})};
    }
    std::vector<WindowDescription>& windows() {
        return m_desktop.windowServer.lists[withoutDesktopElements];
    }
    WindowExistence existence(SessionLockState lockState = SessionLockState::unlocked) {
        return m_checker->existence(selection, lockState);
    }
    void quitEditor() {
        windows().clear();
        m_desktop.workspace.running.clear();
        m_desktop.workspace.terminated.emit({editor, identifier});
    }

    ScriptedFollowedDesktop m_desktop;
    std::unique_ptr<WindowServerExistenceChecker> m_checker =
        std::make_unique<WindowServerExistenceChecker>(m_desktop.windowServer, m_desktop.workspace);
};

TEST_F(WindowServerExistenceCheckerTest, AWindowOfTheSameRunningApplicationExists) {
    EXPECT_EQ(existence(), WindowExistence::exists);
}

TEST_F(WindowServerExistenceCheckerTest, OffScreenWindowsAreAskedForToo) {
    (void)m_desktop.calls.take();
    (void)existence();
    EXPECT_EQ(m_desktop.calls.take(), std::vector<std::string>{"window list 16"});
}

TEST_F(WindowServerExistenceCheckerTest, AClosedWindowOfARunningApplicationIsTerminated) {
    windows().pop_back();
    EXPECT_EQ(existence(), WindowExistence::terminated);
    windows().clear();
    EXPECT_EQ(existence(), WindowExistence::terminated);
}

TEST_F(WindowServerExistenceCheckerTest, AnUnreadableListOrOwnerProvesNothing) {
    windows()[1].ownerProcessID.reset();
    EXPECT_EQ(existence(), WindowExistence::temporarilyUnavailable);
    m_desktop.windowServer.lists.clear();
    EXPECT_EQ(existence(), WindowExistence::temporarilyUnavailable);
}

TEST_F(WindowServerExistenceCheckerTest, AnotherProcessOfTheSameApplicationIsNotTheOwner) {
    m_desktop.workspace.run(11, identifier);
    windows()[1].ownerProcessID = 11;
    EXPECT_EQ(existence(), WindowExistence::terminated);
}

TEST_F(WindowServerExistenceCheckerTest, AnotherApplicationOfTheSameProcessNumberIsNotTheOwner) {
    m_desktop.workspace.run(editor, "org.example.other");
    EXPECT_EQ(existence(), WindowExistence::terminated);
    m_desktop.workspace.run(editor, std::nullopt);
    EXPECT_EQ(existence(), WindowExistence::terminated);
    m_desktop.workspace.running.clear();
    EXPECT_EQ(existence(), WindowExistence::terminated);
    m_desktop.workspace.run(editor, identifier);
    EXPECT_EQ(existence(), WindowExistence::exists);
}

TEST_F(WindowServerExistenceCheckerTest, WhatHasQuitStaysGoneWhenItsNumbersAreUsedAgain) {
    const auto before = windows();
    quitEditor();
    EXPECT_EQ(existence(), WindowExistence::terminated);
    windows() = before;
    m_desktop.workspace.run(editor, identifier);
    EXPECT_EQ(existence(), WindowExistence::terminated);
    m_desktop.windowServer.lists.clear();
    EXPECT_EQ(existence(), WindowExistence::terminated) << "even when the list cannot be read";
}

TEST_F(WindowServerExistenceCheckerTest, WhileLockedNothingIsTerminated) {
    quitEditor();
    EXPECT_EQ(existence(SessionLockState::locked), WindowExistence::temporarilyUnavailable);
    EXPECT_EQ(existence(SessionLockState::unknown), WindowExistence::unknown);
    EXPECT_EQ(existence(SessionLockState::unlocked), WindowExistence::terminated);
}

TEST_F(WindowServerExistenceCheckerTest, TheEndOfAnotherApplicationDoesNotMatter) {
    m_desktop.workspace.terminated.emit({11, identifier});
    m_desktop.workspace.terminated.emit({editor, "org.example.other"});
    m_desktop.workspace.terminated.emit({editor, std::nullopt});
    EXPECT_EQ(existence(), WindowExistence::exists);
}

TEST_F(WindowServerExistenceCheckerTest, GoneItWatchesNothing) {
    EXPECT_TRUE(m_desktop.workspace.terminated.hasSubscribers());
    m_checker.reset();
    EXPECT_FALSE(m_desktop.workspace.terminated.hasSubscribers());
}

} // namespace
} // namespace kestrove
