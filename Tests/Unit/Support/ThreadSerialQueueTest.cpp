#include "Tests/Support/PollMainLoop/ThreadSerialQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <future>
#include <memory>
#include <pthread.h>
#include <vector>

namespace kestrove {
namespace {

TEST(ThreadSerialQueue, RunsWhatSeveralThreadsPostOneAtATimeInOrder) {
    constexpr int count = 2000;
    std::array<std::vector<int>, 2> seen;
    std::promise<void> done;
    ThreadSerialQueue queue("test");
    std::array<std::thread, 2> posters;
    for (std::size_t poster = 0; poster < posters.size(); ++poster) {
        posters[poster] = std::thread([&, poster] {
            for (int number = 0; number < count; ++number)
                queue.post([&, poster, number] {
                    // Not guarded: the thread sanitizer tells when two operations overlap.
                    seen[poster].push_back(number);
                    if (seen[0].size() + seen[1].size() == 2UL * count)
                        done.set_value();
                });
        });
    }
    for (auto& poster : posters)
        poster.join();
    done.get_future().wait();
    EXPECT_TRUE(std::ranges::is_sorted(seen[0]));
    EXPECT_TRUE(std::ranges::is_sorted(seen[1]));
}

TEST(ThreadSerialQueue, NamesItsThreadByTheEndOfItsLabel) {
    ThreadSerialQueue queue("an.example.Application.capture.samples");
    EXPECT_EQ(queue.label(), "an.example.Application.capture.samples");
    std::promise<std::string> name;
    // The second operation: the first may run before the thread has its name.
    std::promise<void> started;
    queue.post([&] { started.set_value(); });
    started.get_future().wait();
    queue.post([&] {
        std::array<char, 16> buffer{};
        pthread_getname_np(pthread_self(), buffer.data(), buffer.size());
        name.set_value(buffer.data());
    });
    EXPECT_EQ(name.get_future().get(), "capture.samples");
}

TEST(ThreadSerialQueue, WaitsForTheRunningOperationAndDropsTheRest) {
    std::promise<void> isRunning;
    std::promise<void> mayEnd;
    bool hasEnded = false;
    const auto kept = std::make_shared<int>(1);
    auto queue = std::make_unique<ThreadSerialQueue>("test");
    queue->post([&] {
        isRunning.set_value();
        mayEnd.get_future().wait();
        hasEnded = true;
    });
    queue->post([kept] { ADD_FAILURE(); });
    isRunning.get_future().wait();
    std::thread releases([&] {
        // The rest has been dropped before the wait for the running one ends.
        while (kept.use_count() > 1)
            std::this_thread::yield();
        mayEnd.set_value();
    });
    queue.reset();
    EXPECT_TRUE(hasEnded);
    EXPECT_EQ(kept.use_count(), 1);
    releases.join();
}

TEST(ThreadSerialQueueDeathTest, AbortsWhenItEndsInItsOwnOperation) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            auto* const queue = new ThreadSerialQueue("doomed");
            queue->post([queue] { delete queue; });
            std::promise<void>().get_future().wait();
        },
        "the queue doomed ends in its own operation");
}

} // namespace
} // namespace kestrove
