#include "Tests/Unit/Core/SourceLister/SourceVisibilityCoordinatorFixture.h"

namespace kestrove::sourceVisibilityTests {
namespace {

class SourceVisibilityCoordinatorTest : public SourceVisibilityCoordinatorFixture {};

TEST_F(SourceVisibilityCoordinatorTest, ReturnsTheSnapshotWithTheClassifiedWindows) {
    startRefresh();
    EXPECT_TRUE(m_coordinator.isRefreshing());
    EXPECT_EQ(calls(), Calls{"fetch without 77 78"});
    m_lockState.lockState = SessionLockState::locked;
    m_checker.byOwner = {{"a", WindowExistence::temporarilyUnavailable},
                         {"b", WindowExistence::unknown}};
    answer(m_snapshot);
    EXPECT_EQ(calls(), (Calls{"check 5 locked", "check 6 locked"}))
        << "the lock state is read after the wait";
    ASSERT_TRUE(hasRefreshed());
    EXPECT_EQ(refreshed().lists, m_snapshot.lists);
    EXPECT_EQ(refreshed().existingSources, m_snapshot.existingSources);
    EXPECT_EQ(refreshed().onScreenSources, m_snapshot.onScreenSources);
    EXPECT_EQ(refreshed().terminatedSources, CaptureSourceSet());
    EXPECT_EQ(refreshed().unavailableSources, (CaptureSourceSet{window5, window6}));
    EXPECT_FALSE(m_coordinator.isRefreshing());
}

TEST_F(SourceVisibilityCoordinatorTest, ASecondRefreshReturnsNothingAndDoesNotFetch) {
    startRefresh();
    std::optional<RefreshResult> second;
    m_scope->launch(run(m_coordinator, {selection5}, {window5}, &second));
    m_loop.runUntilIdle();
    ASSERT_TRUE(second && second->has_value());
    EXPECT_FALSE((*second)->has_value());
    EXPECT_EQ(calls(), Calls{"fetch without 77 78"});
    EXPECT_TRUE(m_coordinator.isRefreshing()) << "the first one goes on";
    answer(m_snapshot);
    EXPECT_TRUE(hasRefreshed());
}

TEST_F(SourceVisibilityCoordinatorTest, AFailedFetchIsPassedOnAndEndsTheRefresh) {
    m_coordinator.setInterruptedSource(display1);
    startRefresh();
    const PlatformError refused("X11", 3, "no");
    answer(std::unexpected(refused));
    ASSERT_TRUE(m_result);
    EXPECT_EQ(m_result->error(), refused);
    EXPECT_FALSE(m_coordinator.isRefreshing());
    EXPECT_EQ(m_coordinator.interruptedSource(), display1);
    EXPECT_EQ(calls(), Calls{"fetch without 77 78"});
    startRefresh();
    EXPECT_EQ(calls(), Calls{"fetch without 77 78"}) << "the next one may run";
}

TEST_F(SourceVisibilityCoordinatorTest, ADroppedRefreshCountsAsEnded) {
    startRefresh();
    m_scope.reset();
    EXPECT_FALSE(m_coordinator.isRefreshing());
    answer(m_snapshot);
    EXPECT_FALSE(m_result);
}

TEST_F(SourceVisibilityCoordinatorTest, TheSessionIsToldOfTerminatedWindowsAndAwaited) {
    m_checker.byOwner["a"] = WindowExistence::terminated;
    startRefresh();
    answer(m_snapshot);
    EXPECT_EQ(calls(), (Calls{"fetch without 77 78", "check 5 unlocked", "check 6 unlocked",
                              "stop if among 1"}));
    EXPECT_EQ(m_session.lastTerminated, CaptureSourceSet{window5});
    EXPECT_FALSE(m_result);
    EXPECT_TRUE(m_coordinator.isRefreshing());
    finish(m_session.stopped);
    ASSERT_TRUE(hasRefreshed());
    EXPECT_EQ(refreshed().terminatedSources, CaptureSourceSet{window5});
    EXPECT_EQ(refreshed().unavailableSources, CaptureSourceSet());
}

TEST_F(SourceVisibilityCoordinatorTest, ATerminatedInterruptedSourceIsGivenUp) {
    m_checker.byOwner["a"] = WindowExistence::terminated;
    m_coordinator.setInterruptedSource(window5);
    startRefresh();
    answer(m_snapshot);
    finish(m_session.stopped);
    EXPECT_EQ(calls(), (Calls{"fetch without 77 78", "check 5 unlocked", "check 6 unlocked",
                              "stop if among 1", "stopped", "cancel refresh"}));
    EXPECT_EQ(m_coordinator.interruptedSource(), std::nullopt);
    EXPECT_TRUE(hasRefreshed());
}

TEST_F(SourceVisibilityCoordinatorTest, AnInterruptedWindowThatIsBackIsResumed) {
    m_coordinator.setInterruptedSource(window5);
    startRefresh();
    answer(m_snapshot);
    EXPECT_EQ(calls(),
              (Calls{"fetch without 77 78", "check 5 unlocked", "check 6 unlocked", "resume 5"}));
    EXPECT_EQ(m_coordinator.interruptedSource(), window5) << "until the session runs again";
    finish(m_session.resumed, true);
    EXPECT_EQ(m_coordinator.interruptedSource(), std::nullopt);
    EXPECT_TRUE(hasRefreshed());
}

TEST_F(SourceVisibilityCoordinatorTest, WhatCouldNotBeResumedStaysInterrupted) {
    m_coordinator.setInterruptedSource(window5);
    startRefresh();
    answer(m_snapshot);
    finish(m_session.resumed, false);
    EXPECT_EQ(m_coordinator.interruptedSource(), window5);
    EXPECT_TRUE(hasRefreshed());
}

TEST_F(SourceVisibilityCoordinatorTest, AnInterruptedDisplayThatIsConnectedIsResumed) {
    m_coordinator.setInterruptedSource(display1);
    startRefresh({}, {display1});
    answer(m_snapshot);
    EXPECT_EQ(calls(), (Calls{"fetch without 77 78", "resume 1"}));
    finish(m_session.resumed);
    EXPECT_EQ(m_coordinator.interruptedSource(), std::nullopt);
}

TEST_F(SourceVisibilityCoordinatorTest, AnInterruptedDisplayThatIsNotPickedIsLeftAlone) {
    m_coordinator.setInterruptedSource(display1);
    startRefresh({}, {CaptureSource::window(1), CaptureSource::display(2)});
    answer(m_snapshot);
    expectLeftAlone(display1);
}

TEST_F(SourceVisibilityCoordinatorTest, AnInterruptedDisplayThatIsNotConnectedIsLeftAlone) {
    m_coordinator.setInterruptedSource(display1);
    m_snapshot.onScreenSources.erase(display1);
    startRefresh();
    answer(m_snapshot);
    expectLeftAlone(display1);
}

TEST_F(SourceVisibilityCoordinatorTest, AMinimisedInterruptedWindowIsNotResumed) {
    m_coordinator.setInterruptedSource(window5);
    m_snapshot.onScreenSources.erase(window5);
    startRefresh();
    answer(m_snapshot);
    expectLeftAlone(window5);
}

TEST_F(SourceVisibilityCoordinatorTest, AnInterruptedWindowWithoutASelectionIsNotResumed) {
    m_coordinator.setInterruptedSource(window5);
    startRefresh({selection6}, {window5, window6});
    answer(m_snapshot);
    expectLeftAlone(window5);
}

TEST_F(SourceVisibilityCoordinatorTest, WhileLockedNothingIsStoppedOrResumed) {
    m_checker.byOwner = {{"a", WindowExistence::temporarilyUnavailable},
                         {"b", WindowExistence::temporarilyUnavailable}};
    m_coordinator.setInterruptedSource(window5);
    startRefresh();
    answer(m_snapshot);
    expectLeftAlone(window5);
}

TEST_F(SourceVisibilityCoordinatorTest, WhatIsInterruptedIsReadAfterTheStop) {
    m_checker.byOwner["b"] = WindowExistence::terminated;
    m_coordinator.setInterruptedSource(window5);
    startRefresh();
    answer(m_snapshot);
    m_coordinator.setInterruptedSource(std::nullopt);
    finish(m_session.stopped);
    EXPECT_EQ(calls().back(), "stopped") << "nothing is resumed any more";
    EXPECT_TRUE(hasRefreshed());
}

TEST_F(SourceVisibilityCoordinatorTest, ASessionThatGoesDuringTheFetchIsSkipped) {
    m_checker.byOwner["b"] = WindowExistence::terminated;
    m_coordinator.setInterruptedSource(window5);
    startRefresh();
    m_coordinator.forgetSessionController();
    answer(m_snapshot);
    ASSERT_TRUE(hasRefreshed());
    EXPECT_EQ(refreshed().terminatedSources, CaptureSourceSet{window6});
    EXPECT_EQ(calls(), (Calls{"fetch without 77 78", "check 5 unlocked", "check 6 unlocked"}));
    EXPECT_EQ(m_coordinator.interruptedSource(), window5);
}

TEST_F(SourceVisibilityCoordinatorTest, TheLaterOfTwoSelectionsOfOneWindowCounts) {
    m_checker.byOwner["a"] = WindowExistence::unknown;
    startRefresh({selection5, {5, {12, "c"}}}, {window5});
    answer(m_snapshot);
    ASSERT_TRUE(hasRefreshed());
    EXPECT_EQ(refreshed().unavailableSources, CaptureSourceSet());
}

TEST_F(SourceVisibilityCoordinatorTest, AnInterruptedSourceThatIsPickedNoMoreIsGivenUp) {
    m_coordinator.selectedSourcesDidChange({});
    EXPECT_EQ(calls(), Calls()) << "nothing was interrupted";
    m_coordinator.setInterruptedSource(window5);
    m_coordinator.selectedSourcesDidChange({display1, window5});
    EXPECT_EQ(calls(), Calls());
    EXPECT_EQ(m_coordinator.interruptedSource(), window5);
    m_coordinator.selectedSourcesDidChange({display1, CaptureSource::display(5)});
    EXPECT_EQ(calls(), Calls{"cancel refresh"});
    EXPECT_EQ(m_coordinator.interruptedSource(), std::nullopt);
}

TEST_F(SourceVisibilityCoordinatorTest, GivingUpWithoutASessionIsSilent) {
    m_coordinator.forgetSessionController();
    m_coordinator.setInterruptedSource(window5);
    m_coordinator.selectedSourcesDidChange({});
    EXPECT_EQ(m_coordinator.interruptedSource(), std::nullopt);
    EXPECT_EQ(calls(), Calls());
}

/// Drops the refresh while it waits for the session's stop, and while it waits for the resume.
TEST_F(SourceVisibilityCoordinatorTest, DroppedWhileItWaitsForTheSessionItCountsAsEnded) {
    m_checker.byOwner["b"] = WindowExistence::terminated;
    m_coordinator.setInterruptedSource(window5);
    startRefresh();
    answer(m_snapshot);
    EXPECT_EQ(calls().back(), "stop if among 1");
    m_scope = std::make_unique<TaskScope>(m_loop);
    EXPECT_FALSE(m_coordinator.isRefreshing());
    finish(m_session.stopped);
    EXPECT_EQ(calls(), Calls());

    m_checker.byOwner.clear();
    startRefresh();
    answer(m_snapshot);
    EXPECT_EQ(calls().back(), "resume 5");
    m_scope.reset();
    EXPECT_FALSE(m_coordinator.isRefreshing());
    finish(m_session.resumed);
    EXPECT_EQ(m_coordinator.interruptedSource(), window5);
    EXPECT_FALSE(m_result);
}

} // namespace
} // namespace kestrove::sourceVisibilityTests
