#include "Tests/Unit/Core/ActiveDisplayTracker/ActiveDisplayTrackerFixture.h"

#include <memory>

namespace kestrove {
namespace {

class ActiveDisplayTrackerTest : public ActiveDisplayTrackerFixture {};

TEST_F(ActiveDisplayTrackerTest, IsStoppedWithoutADisplayAtFirst) {
    EXPECT_EQ(m_tracker.currentDisplay().get(), std::nullopt);
    EXPECT_EQ(calls(), Calls());
    m_desktop.movePointer(onSecond);
    EXPECT_EQ(settle(), Calls());
}

TEST_F(ActiveDisplayTrackerTest, StartingPublishesBeforeItWatches) {
    m_tracker.start(FollowMode::mouse);
    EXPECT_EQ(calls(), (Calls{"pointer location", "published 1", "watch global pointer",
                              "watch local pointer"}));
    EXPECT_EQ(m_tracker.mode(), FollowMode::mouse);
    EXPECT_EQ(m_tracker.currentDisplay().get(), 1U);
}

TEST_F(ActiveDisplayTrackerTest, StartingAgainPublishesTheSameDisplayAgainAndNeverWatchesTwice) {
    start(FollowMode::mouse);
    m_tracker.start(FollowMode::mouse);
    EXPECT_EQ(calls(), (Calls{"unwatch global pointer", "unwatch local pointer", "pointer location",
                              "published 1", "watch global pointer", "watch local pointer"}));
}

TEST_F(ActiveDisplayTrackerTest, WhoCouldNotShowADisplayIsToldOnceMore) {
    start(FollowMode::mouse);
    m_tracker.announceNext();
    EXPECT_EQ(settle(), Calls()) << "not before the user does something";
    for (const Calls& expected : {Calls{"published 1"}, Calls()}) {
        m_desktop.movePointer(onFirst);
        EXPECT_EQ(settle(), expected);
    }
    m_tracker.announceNext();
    start(FollowMode::mouse);
    m_desktop.movePointer(onFirst);
    EXPECT_EQ(settle(), Calls()) << "it was told when it started";
}

TEST_F(ActiveDisplayTrackerTest, ChangingTheModeChangesWhatIsWatched) {
    start(FollowMode::mouse);
    m_tracker.start(FollowMode::focusedApp);
    EXPECT_EQ(calls(), (Calls{"unwatch global pointer", "unwatch local pointer",
                              "frontmost application", "published none", "watch activation"}));
    m_tracker.start(FollowMode::mouse);
    EXPECT_EQ(calls(), (Calls{"unwatch activation", "pointer location", "published 1",
                              "watch global pointer", "watch local pointer"}));
}

TEST_F(ActiveDisplayTrackerTest, StartingInManualModeSendsAndWatchesNothing) {
    start(FollowMode::mouse);
    m_tracker.start(FollowMode::manual);
    EXPECT_EQ(calls(), (Calls{"unwatch global pointer", "unwatch local pointer"}));
    EXPECT_EQ(m_tracker.mode(), FollowMode::manual);
    EXPECT_EQ(m_tracker.currentDisplay().get(), 1U) << "the published value is kept";
    m_tracker.recompute(ActiveDisplayTracker::Announcement::always);
    EXPECT_EQ(calls(), Calls());
}

TEST_F(ActiveDisplayTrackerTest, NothingIsPublishedUntilThePointerHasRested) {
    start(FollowMode::mouse);
    for (int move = 0; move < 50; ++move) {
        m_desktop.movePointer(move % 2 == 0 ? onSecond : onFirst);
        m_desktop.loop.advance(Seconds(0.14));
    }
    m_desktop.movePointer(onSecond);
    m_desktop.loop.advance(Seconds(0.149));
    EXPECT_EQ(calls(), Calls()) << "nor is the pointer even read";
    m_desktop.loop.advance(Seconds(0.002));
    EXPECT_EQ(calls(), (Calls{"pointer location", "published 2"}));
}

TEST_F(ActiveDisplayTrackerTest, MovesOverOurOwnWindowsCountToo) {
    start(FollowMode::mouse);
    m_desktop.pointer.point = onSecond;
    m_desktop.pointer.localMoved.emit();
    EXPECT_EQ(settle(), Calls{"published 2"});
}

TEST_F(ActiveDisplayTrackerTest, ABurstThatEndsOnTheSameDisplayPublishesNothing) {
    start(FollowMode::mouse);
    m_desktop.movePointer(onSecond);
    m_desktop.movePointer({200, 200});
    EXPECT_EQ(settle(), Calls());
    EXPECT_EQ(m_tracker.currentDisplay().get(), 1U);
}

TEST_F(ActiveDisplayTrackerTest, APointerOnNoScreenMeansTheMainDisplay) {
    start(FollowMode::mouse);
    m_desktop.movePointer(onSecond);
    EXPECT_EQ(settle(), Calls{"published 2"});
    m_desktop.movePointer(nowhere);
    EXPECT_EQ(settle(), Calls{"published 1"});
}

TEST_F(ActiveDisplayTrackerTest, WithoutScreensTheDisplayIsAbsent) {
    start(FollowMode::mouse);
    m_desktop.screens.list.clear();
    m_desktop.movePointer(onSecond);
    EXPECT_EQ(settle(), Calls{"published none"});
}

TEST_F(ActiveDisplayTrackerTest, StoppingDropsWhatIsPendingAndKeepsTheDisplay) {
    start(FollowMode::mouse);
    m_desktop.movePointer(onSecond);
    m_tracker.stop();
    EXPECT_EQ(calls(), (Calls{"unwatch global pointer", "unwatch local pointer"}));
    EXPECT_EQ(settle(), Calls());
    EXPECT_EQ(m_tracker.currentDisplay().get(), 1U);
    m_tracker.stop();
    EXPECT_EQ(calls(), Calls()) << "a second stop has nothing to do";
}

TEST_F(ActiveDisplayTrackerTest, RecomputingSendsTheSameDisplayOnlyWhenTold) {
    start(FollowMode::mouse);
    m_tracker.recompute(ActiveDisplayTracker::Announcement::whenChanged);
    EXPECT_EQ(calls(), Calls{"pointer location"});
    m_tracker.recompute(ActiveDisplayTracker::Announcement::always);
    EXPECT_EQ(calls(), (Calls{"pointer location", "published 1"}));
}

TEST_F(ActiveDisplayTrackerTest, ANewSubscriberGetsTheCurrentDisplayAtOnce) {
    start(FollowMode::mouse);
    std::vector<std::optional<DisplayID>> seen;
    const auto subscription = m_tracker.currentDisplay().observe(
        [&seen](std::optional<DisplayID> display) { seen.push_back(display); });
    EXPECT_EQ(seen, (std::vector<std::optional<DisplayID>>{1}));
}

TEST_F(ActiveDisplayTrackerTest, GoneWithARecomputationPendingItDoesNothing) {
    auto tracker =
        std::make_unique<ActiveDisplayTracker>(m_desktop.seam(), FollowMode::mouse, Seconds(0.15));
    tracker->start(FollowMode::mouse);
    m_desktop.movePointer(onSecond);
    EXPECT_EQ(m_desktop.loop.timerCount(), 1U);
    tracker.reset();
    EXPECT_EQ(m_desktop.loop.timerCount(), 0U);
    EXPECT_FALSE(m_desktop.pointer.globalMoved.hasSubscribers());
    EXPECT_FALSE(m_desktop.pointer.localMoved.hasSubscribers());
}

} // namespace
} // namespace kestrove
