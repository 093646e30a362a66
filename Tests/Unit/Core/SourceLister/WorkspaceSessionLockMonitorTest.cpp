#include "Core/SourceLister/WorkspaceSessionLockMonitor.h"

#include "Tests/Support/ScriptedDesktop/ScriptedApplication.h"
#include "Tests/Support/ScriptedDesktop/ScriptedWorkspace.h"

#include <gtest/gtest.h>

#include <memory>

namespace kestrove {
namespace {

class WorkspaceSessionLockMonitorTest : public testing::Test {
protected:
    void start() {
        m_monitor = std::make_unique<WorkspaceSessionLockMonitor>(m_workspace, m_application);
    }
    SessionLockState after(const Signal<>& notification) {
        notification.emit();
        return m_monitor->state();
    }

    CallLog m_calls;
    ScriptedWorkspace m_workspace{m_calls};
    ScriptedApplication m_application;
    std::unique_ptr<WorkspaceSessionLockMonitor> m_monitor;
};

TEST_F(WorkspaceSessionLockMonitorTest, StartedWhileActiveItIsUnlocked) {
    m_application.active = true;
    start();
    EXPECT_EQ(m_monitor->state(), SessionLockState::unlocked);
}

TEST_F(WorkspaceSessionLockMonitorTest, StartedBehindAnotherApplicationItIsUnknown) {
    start();
    EXPECT_EQ(m_monitor->state(), SessionLockState::unknown);
    EXPECT_EQ(after(m_application.becameActive), SessionLockState::unlocked);
    start();
    EXPECT_EQ(after(m_workspace.sessionBecameActive), SessionLockState::unlocked);
}

TEST_F(WorkspaceSessionLockMonitorTest, WakingScreensOnlyMakeItUnknown) {
    m_application.active = true;
    start();
    EXPECT_EQ(after(m_workspace.screensSlept), SessionLockState::locked);
    EXPECT_EQ(after(m_workspace.screensWoke), SessionLockState::unknown);
    EXPECT_EQ(after(m_application.becameActive), SessionLockState::unlocked);
}

TEST_F(WorkspaceSessionLockMonitorTest, TheSessionLocksAndUnlocks) {
    start();
    EXPECT_EQ(after(m_workspace.sessionResigned), SessionLockState::locked);
    EXPECT_EQ(after(m_workspace.sessionBecameActive), SessionLockState::unlocked);
}

TEST_F(WorkspaceSessionLockMonitorTest, EveryNotificationCountsInEveryState) {
    start();
    using Case = std::pair<const Signal<>*, SessionLockState>;
    const std::vector<Case> cases{
        {&m_workspace.sessionResigned, SessionLockState::locked},
        {&m_workspace.sessionBecameActive, SessionLockState::unlocked},
        {&m_workspace.screensSlept, SessionLockState::locked},
        {&m_workspace.screensWoke, SessionLockState::unknown},
        {&m_application.becameActive, SessionLockState::unlocked},
    };
    for (const auto& [first, stateAfterFirst] : cases) {
        for (const auto& [second, stateAfterSecond] : cases) {
            EXPECT_EQ(after(*first), stateAfterFirst);
            EXPECT_EQ(after(*second), stateAfterSecond);
        }
    }
}

TEST_F(WorkspaceSessionLockMonitorTest, GoneItWatchesNothing) {
    start();
    m_monitor.reset();
    for (const auto* signal :
         {&m_workspace.sessionResigned, &m_workspace.sessionBecameActive, &m_workspace.screensSlept,
          &m_workspace.screensWoke, &m_application.becameActive}) {
        EXPECT_FALSE(signal->hasSubscribers());
        signal->emit();
    }
}

} // namespace
} // namespace kestrove
