#include "Platform/Qt/QtMainLoop.h"

#include "Tests/Support/QtSpin.h"

#include <QEventLoop>

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

namespace kestrove {
namespace {

class QtMainLoopTest : public testing::Test {
protected:
    QtMainLoop loop;
};

TEST_F(QtMainLoopTest, RunsWhatIsPostedInOrderAndNeverInsideThePost) {
    std::vector<int> order;
    loop.post([&] {
        order.push_back(1);
        loop.post([&] { order.push_back(3); });
        EXPECT_EQ(order, (std::vector{1}));
    });
    loop.post([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(spinUntil([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST_F(QtMainLoopTest, RunsOnTheMainThreadWhatAnotherThreadPosts) {
    constexpr int count = 500;
    std::vector<int> order;
    std::thread other([&] {
        EXPECT_FALSE(loop.isMainThread());
        for (int number = 0; number < count; ++number)
            loop.post([&, number] {
                EXPECT_TRUE(loop.isMainThread());
                order.push_back(number);
            });
    });
    EXPECT_TRUE(spinUntil([&] { return order.size() == count; }));
    other.join();
    EXPECT_TRUE(std::ranges::is_sorted(order));
}

TEST_F(QtMainLoopTest, LetsTimersTickWhileAnOperationPostsItselfForEver) {
    bool ticked = false;
    std::function<void()> again = [&] {
        if (!ticked)
            loop.post([&] { again(); });
    };
    again();
    const auto timer = loop.runAfter(Seconds(0.01), [&] { ticked = true; });
    EXPECT_TRUE(spinUntil([&] { return ticked; }));
}

TEST_F(QtMainLoopTest, GoesOnInsideANestedEventLoop) {
    bool ran = false;
    loop.post([&] {
        QEventLoop nested;
        loop.post([&] {
            ran = true;
            nested.quit();
        });
        EXPECT_EQ(nested.exec(), 0);
        EXPECT_TRUE(ran);
    });
    EXPECT_TRUE(spinUntil([&] { return ran; }));
}

TEST_F(QtMainLoopTest, RunsADelayOnceAndNotTooEarly) {
    for (const auto delay : {Seconds(-1), Seconds(0), Seconds(0.015), Seconds(0.15)}) {
        int runs = 0;
        const auto start = loop.now();
        const auto timer = loop.runAfter(delay, [&] { ++runs; });
        EXPECT_TRUE(timer.isPending());
        EXPECT_EQ(runs, 0);
        EXPECT_TRUE(spinUntil([&] { return runs > 0; }));
        EXPECT_GE(loop.now() - start, delay);
        EXPECT_FALSE(timer.isPending());
    }
}

TEST_F(QtMainLoopTest, RepeatsUntilItIsCancelled) {
    int ticks = 0;
    const auto start = loop.now();
    auto timer = loop.runEvery(Seconds(0.01), [&] { ++ticks; });
    EXPECT_TRUE(spinUntil([&] { return ticks == 3; }));
    EXPECT_GE(loop.now() - start, Seconds(0.028));
    EXPECT_TRUE(timer.isPending());
    timer.cancel();
    EXPECT_FALSE(timer.isPending());
    bool later = false;
    const auto after = loop.runAfter(Seconds(0.05), [&] { later = true; });
    EXPECT_TRUE(spinUntil([&] { return later; }));
    EXPECT_EQ(ticks, 3);
}

TEST_F(QtMainLoopTest, MergesTheTicksThatABusyMainThreadMissed) {
    int ticks = 0;
    int ticksAfterTheJam = 0;
    const auto timer = loop.runEvery(Seconds(0.02), [&] { ++ticks; });
    loop.post([&] {
        const auto start = loop.now();
        while (loop.now() - start < Seconds(0.2))
            std::this_thread::yield();
        ticksAfterTheJam = ticks;
    });
    bool isOver = false;
    const auto end = loop.runAfter(Seconds(0.21), [&] { isOver = true; });
    EXPECT_TRUE(spinUntil([&] { return isOver; }));
    EXPECT_EQ(ticksAfterTheJam, 0);
    // Ten were missed: they make one, and the end comes at most one further interval later.
    EXPECT_GE(ticks, 1);
    EXPECT_LE(ticks, 3);
}

TEST_F(QtMainLoopTest, KeepsTheOperationUntilATickThatCancelsItselfHasReturned) {
    const auto owned = std::make_shared<int>(7);
    const std::weak_ptr<int> watched = owned;
    Timer timer;
    bool wasAlive = false;
    timer = loop.runEvery(Seconds(0.001), [&timer, &wasAlive, watched, kept = owned] {
        timer.cancel();
        wasAlive = watched.lock() == kept;
    });
    const_cast<std::shared_ptr<int>&>(owned).reset();
    EXPECT_TRUE(spinUntil([&] { return wasAlive; }));
    EXPECT_TRUE(watched.expired());
    EXPECT_FALSE(timer.isPending());
}

TEST_F(QtMainLoopTest, LetsATickSetItsOwnTimerAnew) {
    int ticks = 0;
    Timer timer;
    std::function<void()> tick = [&] {
        if (++ticks < 3)
            timer = loop.runAfter(Seconds(0.001), [&] { tick(); });
    };
    timer = loop.runAfter(Seconds(0.001), [&] { tick(); });
    EXPECT_TRUE(spinUntil([&] { return ticks == 3; }));
    EXPECT_FALSE(timer.isPending());
}

// Posts when it goes: a dropped operation may own such a thing.
struct PostsAtItsEnd {
    explicit PostsAtItsEnd(MainLoop& mainLoop)
        : loop(mainLoop) {}
    PostsAtItsEnd(const PostsAtItsEnd&) = delete;
    PostsAtItsEnd& operator=(const PostsAtItsEnd&) = delete;
    ~PostsAtItsEnd() {
        loop.post([] { ADD_FAILURE(); });
    }
    MainLoop& loop;
};

TEST(QtMainLoopEnd, DropsWhatIsQueuedAndLeavesTimersThatDoNothing) {
    const auto kept = std::make_shared<int>(1);
    Timer timer;
    Timer repeating;
    {
        QtMainLoop loop;
        loop.post([kept] { ADD_FAILURE(); });
        loop.post([owned = std::make_unique<PostsAtItsEnd>(loop)] { ADD_FAILURE(); });
        timer = loop.runAfter(Seconds(0), [kept] { ADD_FAILURE(); });
        repeating = loop.runEvery(Seconds(0.001), [kept] { ADD_FAILURE(); });
    }
    EXPECT_FALSE(timer.isPending());
    timer.cancel();
    repeating.cancel();
    EXPECT_EQ(kept.use_count(), 1);
    QtMainLoop another;
    bool ran = false;
    const auto later = another.runAfter(Seconds(0.01), [&] { ran = true; });
    EXPECT_TRUE(spinUntil([&] { return ran; }));
}

TEST_F(QtMainLoopTest, MakesQueuesThatRunOnTheMainThreadInTurnsOfTheirOwn) {
    auto queue = loop.makeSerialQueue("a.queue");
    EXPECT_EQ(queue->label(), "a.queue");
    std::vector<int> order;
    std::thread other([&] {
        for (const int number : {1, 2})
            queue->post([&, number] {
                EXPECT_TRUE(loop.isMainThread());
                order.push_back(number);
                queue->post([&, number] { order.push_back(10 * number); });
                EXPECT_NE(order.back(), 10 * number);
            });
    });
    // Both are queued before the first one runs.
    other.join();
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(spinUntil([&] { return order.size() == 4; }));
    EXPECT_EQ(order, (std::vector{1, 2, 10, 20}));
}

TEST_F(QtMainLoopTest, RunsWhatIsDispatchedAtOnceWhereNothingElseOfTheQueueRunsOrWaits) {
    auto queue = loop.makeSerialQueue("a.queue");
    std::vector<int> order;
    const auto append = [&](int number) { return [&, number] { order.push_back(number); }; };
    queue->dispatch([&] {
        order.push_back(1);
        queue->dispatch(append(2));
        order.push_back(3);
    });
    EXPECT_EQ(order, (std::vector{1, 3})) << "one runs at a time";
    queue->dispatch(append(4));
    EXPECT_EQ(order.size(), 2) << "and none before those that wait";
    EXPECT_TRUE(spinUntil([&] { return order.size() == 4; }));
    EXPECT_EQ(order, (std::vector{1, 3, 2, 4}));
    queue->dispatch(append(5));
    EXPECT_EQ(order.size(), 5);
    std::thread([&] { queue->dispatch(append(6)); }).join();
    EXPECT_EQ(order.size(), 5) << "on the main thread only";
    EXPECT_TRUE(spinUntil([&] { return order.size() == 6; }));
}

TEST_F(QtMainLoopTest, DropsWhatIsQueuedWhereTheQueueGoes) {
    auto queue = loop.makeSerialQueue("short-lived");
    const auto kept = std::make_shared<bool>(false);
    queue->post([kept] { *kept = true; });
    queue.reset();
    bool isLater = false;
    loop.post([&] { isLater = true; });
    EXPECT_TRUE(spinUntil([&] { return isLater; }));
    EXPECT_FALSE(*kept);
}

} // namespace
} // namespace kestrove
