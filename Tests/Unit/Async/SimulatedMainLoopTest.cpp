#include "Platform/Simulated/SimulatedMainLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace kestrove {
namespace {

class SimulatedMainLoopTest : public testing::Test {
protected:
    SimulatedMainLoop m_loop;
    std::string m_log;
    Operation note(char letter) {
        return [this, letter] { m_log += letter; };
    }
};

using SimulatedMainLoopDeathTest = SimulatedMainLoopTest;

TEST_F(SimulatedMainLoopTest, RunsWhatIsPostedInOrderAndAfterTheWorkThatPostedIt) {
    m_loop.post([this] {
        m_loop.post(note('c'));
        m_log += 'a';
    });
    m_loop.post(note('b'));
    EXPECT_EQ(m_log, "");
    m_loop.runUntilIdle();
    EXPECT_EQ(m_log, "abc");
    EXPECT_EQ(m_loop.now(), Seconds(0));
}

TEST_F(SimulatedMainLoopTest, RunsTimersByTheirTimeAndEqualOnesInTheOrderOfSetting) {
    const auto b = m_loop.runAfter(Seconds(2), note('b'));
    const auto c = m_loop.runAfter(Seconds(2), note('c'));
    const auto a = m_loop.runAfter(Seconds(1), note('a'));
    const auto d = m_loop.runAfter(Seconds(2.5), note('d'));
    m_loop.advance(Seconds(2));
    EXPECT_EQ(m_log, "abc");
    EXPECT_EQ(m_loop.now(), Seconds(2));
    EXPECT_FALSE(a.isPending());
    EXPECT_TRUE(d.isPending());
}

TEST_F(SimulatedMainLoopTest, RunsWhatATimerPostsBeforeTheNextTimer) {
    const auto first = m_loop.runAfter(Seconds(1), [this] {
        m_log += 'a';
        m_loop.post(note('b'));
    });
    const auto second = m_loop.runAfter(Seconds(1), note('c'));
    m_loop.advance(Seconds(1));
    EXPECT_EQ(m_log, "abc");
}

TEST_F(SimulatedMainLoopTest, ATimerOfNoDelayRunsOnTheNextTurnWithoutMovingTheClock) {
    const auto timer = m_loop.runAfter(Seconds(-5), note('b'));
    m_loop.post(note('a'));
    m_loop.runUntilIdle();
    EXPECT_EQ(m_log, "ab");
    EXPECT_EQ(m_loop.now(), Seconds(0));
}

TEST_F(SimulatedMainLoopTest, AddsUpTimeWithoutError) {
    const auto timer = m_loop.runAfter(Seconds(0.8), note('a'));
    for (int step = 0; step < 8; ++step)
        m_loop.advance(Seconds(0.1));
    EXPECT_EQ(m_log, "a");
    EXPECT_EQ(m_loop.now(), Seconds(0.8));
}

TEST_F(SimulatedMainLoopTest, ARepeatingTimerFirstRunsOneIntervalFromNow) {
    const auto timer = m_loop.runEvery(Seconds(5), note('t'));
    m_loop.advance(Seconds(4.9));
    EXPECT_EQ(m_log, "");
    m_loop.advance(Seconds(10.1));
    EXPECT_EQ(m_log, "ttt");
}

TEST_F(SimulatedMainLoopTest, TicksMissedWhileTheMainThreadIsBusyAreMergedIntoOne) {
    const auto timer = m_loop.runEvery(Seconds(1), note('t'));
    m_loop.post([this] { m_loop.stall(Seconds(5.5)); });
    m_loop.runUntilIdle();
    EXPECT_EQ(m_log, "t");
    EXPECT_EQ(m_loop.now(), Seconds(5.5));
    m_loop.advance(Seconds(1));
    EXPECT_EQ(m_log, "tt");
}

TEST_F(SimulatedMainLoopTest, ATimerMayBeCancelledFromItsOwnTick) {
    const auto marker = std::make_shared<int>(0);
    Timer repeating;
    repeating = m_loop.runEvery(Seconds(1), [&repeating, marker] {
        repeating.cancel();
        ++*marker;
    });
    Timer once;
    once = m_loop.runAfter(Seconds(1), [&once, marker] {
        once.cancel();
        ++*marker;
    });
    m_loop.advance(Seconds(10));
    EXPECT_EQ(*marker, 2);
    EXPECT_EQ(marker.use_count(), 1) << "both operations were freed";
    EXPECT_EQ(m_loop.timerCount(), 0U);
}

TEST_F(SimulatedMainLoopTest, ATimerMayBeSetAnewFromItsOwnTick) {
    Timer timer;
    std::function<void()> tick = [&] {
        m_log += 't';
        if (m_log.size() < 3)
            timer = m_loop.runAfter(Seconds(1), tick);
    };
    timer = m_loop.runAfter(Seconds(1), tick);
    m_loop.advance(Seconds(10));
    EXPECT_EQ(m_log, "ttt");
}

TEST_F(SimulatedMainLoopTest, ATickMayCancelAnotherTimerThatIsDueWithIt) {
    Timer second;
    const auto first = m_loop.runAfter(Seconds(1), [&second] { second.cancel(); });
    second = m_loop.runAfter(Seconds(1), note('b'));
    m_loop.advance(Seconds(2));
    EXPECT_EQ(m_log, "");
}

TEST_F(SimulatedMainLoopTest, ATimerThatIsOverLetsGoOfWhatItOwned) {
    const auto marker = std::make_shared<int>(0);
    const auto timer = m_loop.runAfter(Seconds(1), [marker] { ++*marker; });
    m_loop.advance(Seconds(1));
    EXPECT_EQ(marker.use_count(), 1);
}

TEST_F(SimulatedMainLoopTest, TheClockNeverGoesBack) {
    const auto timer = m_loop.runAfter(Seconds(1), [this] { m_loop.advance(Seconds(100)); });
    m_loop.advance(Seconds(10));
    EXPECT_EQ(m_loop.now(), Seconds(101));
}

TEST_F(SimulatedMainLoopTest, GoesToTheNextTimerHoweverFarAway) {
    const auto timer = m_loop.runAfter(Seconds(36000), note('a'));
    EXPECT_TRUE(m_loop.advanceToNextTimer());
    EXPECT_EQ(m_log, "a");
    EXPECT_EQ(m_loop.now(), Seconds(36000));
    EXPECT_FALSE(m_loop.advanceToNextTimer());
}

TEST_F(SimulatedMainLoopTest, ASerialQueueKeepsItsOrderAndIsNotTheMainThread) {
    const auto queue = m_loop.makeSerialQueue("a.label");
    EXPECT_EQ(queue->label(), "a.label");
    std::vector<bool> onMainThread;
    queue->post([&] {
        m_log += 'a';
        onMainThread.push_back(m_loop.isMainThread());
        queue->post(note('c'));
        m_loop.post([&] { onMainThread.push_back(m_loop.isMainThread()); });
    });
    queue->post(note('b'));
    m_loop.runUntilIdle();
    EXPECT_EQ(m_log, "abc");
    EXPECT_EQ(onMainThread, (std::vector{false, true}));
    EXPECT_TRUE(m_loop.isMainThread());
}

TEST_F(SimulatedMainLoopTest, ADestroyedQueueDropsWhatWasLeft) {
    const auto marker = std::make_shared<int>(0);
    auto queue = m_loop.makeSerialQueue("short-lived");
    queue->post([marker] { ++*marker; });
    queue.reset();
    m_loop.runUntilIdle();
    EXPECT_EQ(*marker, 0);
    EXPECT_EQ(marker.use_count(), 1);
}

TEST_F(SimulatedMainLoopTest, IsNotTheMainThreadForAnother) {
    bool isMain = true;
    std::thread([&] { isMain = m_loop.isMainThread(); }).join();
    EXPECT_FALSE(isMain);
}

TEST(SimulatedMainLoopEnd, TimersMayOutliveTheLoopAndItsWorkIsDropped) {
    const auto marker = std::make_shared<int>(0);
    Timer timer;
    {
        SimulatedMainLoop loop;
        timer = loop.runAfter(Seconds(1), [marker] { ++*marker; });
        loop.post([marker] { ++*marker; });
    }
    timer.cancel();
    EXPECT_EQ(*marker, 0);
    EXPECT_EQ(marker.use_count(), 1);
}

TEST_F(SimulatedMainLoopTest, WhatSlowQueuesPostArrivesLateAndInItsOrder) {
    const auto queue = m_loop.makeSerialQueue("samples");
    const auto postFromQueue = [&](char letter) {
        queue->post([this, letter] { m_loop.post(note(letter)); });
        m_loop.runUntilIdle();
    };
    m_loop.setDelayOfQueues(Seconds(2));
    postFromQueue('c');
    m_loop.post(note('a'));
    m_loop.advance(Seconds(1.5));
    EXPECT_EQ(m_log, "a");
    m_loop.setDelayOfQueues(Seconds(0));
    postFromQueue('d');
    EXPECT_EQ(m_log, "a") << "it does not overtake";
    m_loop.advance(Seconds(0.5));
    EXPECT_EQ(m_log, "acd");
    postFromQueue('e');
    EXPECT_EQ(m_log, "acde");
}

TEST(SimulatedMainLoopEnd, WorkThatIsDroppedMayPostMore) {
    struct Posting {
        explicit Posting(SimulatedMainLoop& target)
            : loop(target) {}
        ~Posting() {
            loop.post([] {});
        }
        SimulatedMainLoop& loop;
    };
    SimulatedMainLoop loop;
    loop.post([posting = std::make_shared<Posting>(loop)] {});
}

TEST_F(SimulatedMainLoopDeathTest, EndsTheProcessWhenItIsMisused) {
    EXPECT_DEATH((void)m_loop.runEvery(Seconds(0), [] {}), "without a positive interval");
    EXPECT_DEATH(std::thread([this] { m_loop.post([] {}); }).join(), "from another thread");
    const std::function<void()> again = [&] { m_loop.post([&] { again(); }); };
    EXPECT_DEATH(
        {
            again();
            m_loop.runUntilIdle();
        },
        "never becomes idle");
}

TEST_F(SimulatedMainLoopDeathTest, ASerialQueueMayNotSetTimersRunTheLoopOrDestroyItself) {
    auto queue = m_loop.makeSerialQueue("samples");
    const auto runs = [&](Operation operation) {
        queue->post(std::move(operation));
        m_loop.runUntilIdle();
    };
    EXPECT_DEATH(runs([&] { (void)m_loop.runAfter(Seconds(1), [] {}); }), "off the main thread");
    EXPECT_DEATH(runs([&] { m_loop.runUntilIdle(); }), "off the main thread");
    EXPECT_DEATH(runs([&] { queue.reset(); }), "one of its own operations");
    auto timer = m_loop.runAfter(Seconds(1), [] {});
    EXPECT_DEATH(runs([&] { timer.cancel(); }), "cancelling a timer called off the main thread");
}

} // namespace
} // namespace kestrove
