#include "Core/AppController/TimerSourceRefreshScheduler.h"

#include "Platform/Simulated/SimulatedMainLoop.h"

#include <gtest/gtest.h>
#include <memory>

namespace kestrove {
namespace {

TEST(TimerSourceRefreshScheduler, RunsTheOperationAtEachInterval) {
    SimulatedMainLoop loop;
    TimerSourceRefreshScheduler scheduler(loop);
    int count = 0;
    scheduler.schedule(Seconds(5), [&count] { ++count; });
    loop.advance(Seconds(4.9));
    EXPECT_EQ(count, 0);
    loop.advance(Seconds(10.2));
    EXPECT_EQ(count, 3);
}

TEST(TimerSourceRefreshScheduler, SchedulingTwiceLeavesOneTimer) {
    SimulatedMainLoop loop;
    TimerSourceRefreshScheduler scheduler(loop);
    int first = 0;
    int second = 0;
    scheduler.schedule(Seconds(5), [&first] { ++first; });
    scheduler.schedule(Seconds(5), [&second] { ++second; });
    EXPECT_EQ(loop.timerCount(), 1U);
    loop.advance(Seconds(10));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 2);
}

TEST(TimerSourceRefreshScheduler, CancellingEndsIt) {
    SimulatedMainLoop loop;
    TimerSourceRefreshScheduler scheduler(loop);
    int count = 0;
    scheduler.schedule(Seconds(5), [&count] { ++count; });
    scheduler.cancel();
    loop.advance(Seconds(20));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(loop.timerCount(), 0U);
}

TEST(TimerSourceRefreshScheduler, MayBeCancelledAndRescheduledFromItsOwnTick) {
    SimulatedMainLoop loop;
    TimerSourceRefreshScheduler scheduler(loop);
    int after = 0;
    scheduler.schedule(Seconds(5), [&] {
        scheduler.cancel();
        scheduler.schedule(Seconds(1), [&after] { ++after; });
    });
    loop.advance(Seconds(7));
    EXPECT_EQ(after, 2);
}

TEST(TimerSourceRefreshScheduler, NothingRunsOnceItHasGone) {
    SimulatedMainLoop loop;
    int count = 0;
    {
        TimerSourceRefreshScheduler scheduler(loop);
        scheduler.schedule(Seconds(5), [&count] { ++count; });
    }
    loop.advance(Seconds(20));
    EXPECT_EQ(count, 0);
}

} // namespace
} // namespace kestrove
