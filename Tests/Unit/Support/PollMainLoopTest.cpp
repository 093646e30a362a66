#include "Tests/Support/PollMainLoop/PollMainLoop.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace kestrove {
namespace {

constexpr Seconds shortly{0.002};

TEST(PollMainLoop, RunsWhatIsPostedInOrderAndNeverInsideTheCall) {
    PollMainLoop loop;
    std::vector<int> ran;
    loop.post([&] {
        ran.push_back(1);
        loop.post([&] { ran.push_back(3); });
        ran.push_back(2);
    });
    EXPECT_TRUE(ran.empty());
    loop.runUntilIdle();
    EXPECT_EQ(ran, (std::vector<int>{1, 2, 3}));
}

TEST(PollMainLoop, FiresTimersInTheOrderInWhichTheyAreDue) {
    PollMainLoop loop;
    std::vector<int> fired;
    const auto start = loop.now();
    // However long this thread is kept from running in between.
    const auto last = loop.runAfter(Seconds(3600), [&] { fired.push_back(3); });
    const auto first = loop.runAfter(shortly, [&] { fired.push_back(1); });
    const auto second = loop.runAfter(2 * shortly, [&] { fired.push_back(2); });
    EXPECT_TRUE(loop.spinUntil([&] { return fired.size() == 2; }));
    EXPECT_EQ(fired, (std::vector<int>{1, 2}));
    EXPECT_GE(loop.now() - start, 2 * shortly);
    EXPECT_FALSE(first.isPending());
    EXPECT_TRUE(last.isPending());
}

TEST(PollMainLoop, EndsARepeatingTimerThatItsOwnTickCancels) {
    PollMainLoop loop;
    int ticks = 0;
    Timer timer;
    timer = loop.runEvery(shortly, [&] {
        if (++ticks == 3)
            timer.cancel();
    });
    EXPECT_TRUE(loop.spinUntil([&] { return ticks == 3; }));
    EXPECT_FALSE(timer.isPending());
    EXPECT_FALSE(loop.spinUntil([&] { return ticks > 3; }, 10 * shortly));
}

TEST(PollMainLoop, FiresTimersOfAHeldClockWhenItIsMovedOn) {
    PollMainLoop loop;
    int fired = 0;
    loop.holdClock();
    const auto start = loop.now();
    const auto timer = loop.runAfter(shortly, [&] { ++fired; });
    EXPECT_FALSE(loop.spinUntil([&] { return fired > 0; }, 2 * shortly));
    EXPECT_TRUE(loop.hasTimers());
    loop.advance(shortly / 2);
    loop.runUntilIdle();
    EXPECT_EQ(fired, 0);
    EXPECT_EQ(loop.now(), start + shortly / 2);
    loop.advance(shortly);
    loop.runUntilIdle();
    EXPECT_EQ(fired, 1);
    EXPECT_FALSE(loop.hasTimers());
}

TEST(PollMainLoop, SaysWhenAConditionDidNotComeToHold) {
    PollMainLoop loop;
    EXPECT_FALSE(loop.spinUntil([] { return false; }, shortly));
}

TEST(PollMainLoop, TellsOfAReadableDescriptorUntilUnsubscribed) {
    PollMainLoop loop;
    const int descriptor = eventfd(0, EFD_NONBLOCK);
    int told = 0;
    auto watch = loop.watchReadable(descriptor, [&] {
        ++told;
        eventfd_t value = 0;
        eventfd_read(descriptor, &value);
    });
    loop.runUntilIdle();
    EXPECT_EQ(told, 0);
    eventfd_write(descriptor, 1);
    loop.runUntilIdle();
    EXPECT_EQ(told, 1);
    watch.cancel();
    eventfd_write(descriptor, 1);
    loop.runUntilIdle();
    EXPECT_EQ(told, 1);
    close(descriptor);
}

TEST(PollMainLoop, IsWokenFromItsSerialQueues) {
    PollMainLoop loop;
    const auto queue = loop.makeSerialQueue("worker");
    EXPECT_EQ(queue->label(), "worker");
    bool wasElsewhere = false;
    bool isDone = false;
    queue->post([&] {
        wasElsewhere = !loop.isMainThread();
        loop.post([&] { isDone = loop.isMainThread(); });
    });
    EXPECT_TRUE(loop.spinUntil([&] { return isDone; }));
    EXPECT_TRUE(wasElsewhere);
}

} // namespace
} // namespace kestrove
