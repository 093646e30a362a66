#include "Platform/Linux/DescriptorSet.h"

#include "Tests/Support/PollMainLoop/PollMainLoop.h"

#include <array>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kestrove {
namespace {

class Pipe {
public:
    Pipe() { EXPECT_EQ(::pipe2(m_ends.data(), O_CLOEXEC), 0); }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        ::close(m_ends[0]);
        closeWritingEnd();
    }

    [[nodiscard]] int readingEnd() const { return m_ends[0]; }
    void write() const { EXPECT_EQ(::write(m_ends[1], "x", 1), 1); }
    void read() const {
        char byte = 0;
        EXPECT_EQ(::read(m_ends[0], &byte, 1), 1);
    }
    void closeWritingEnd() {
        if (m_ends[1] >= 0)
            ::close(std::exchange(m_ends[1], -1));
    }

private:
    std::array<int, 2> m_ends{};
};

/// A main loop that counts what it has to watch.
class CountingLoop final : public DescriptorWatching {
public:
    Subscription watchReadable(int descriptor, std::function<void()> ready) override {
        ++m_count;
        return loop.watchReadable(descriptor, std::move(ready));
    }
    [[nodiscard]] int count() const { return m_count; }

    PollMainLoop loop;

private:
    int m_count = 0;
};

class DescriptorSetTest : public testing::Test {
protected:
    /// Until nothing is readable any more.
    void settle() { m_watching.loop.runUntilIdle(); }

    CountingLoop m_watching;
    DescriptorSet m_set{m_watching};
};

TEST_F(DescriptorSetTest, WatchesAllByOne) {
    std::array<Pipe, 20> pipes;
    std::vector<Subscription> watches;
    watches.reserve(pipes.size());
    int told = 0;
    for (const auto& pipe : pipes) {
        watches.push_back(m_set.watchReadable(pipe.readingEnd(), [&] {
            ++told;
            pipe.read();
        }));
    }
    EXPECT_EQ(m_watching.count(), 1);
    for (const auto& pipe : pipes)
        pipe.write();
    settle();
    EXPECT_EQ(told, 20);
}

TEST_F(DescriptorSetTest, TellsAgainWhileDataIsLeftUnread) {
    const Pipe pipe;
    int told = 0;
    const auto watch = m_set.watchReadable(pipe.readingEnd(), [&] {
        if (++told == 3)
            pipe.read();
    });
    settle();
    EXPECT_EQ(told, 0);
    pipe.write();
    settle();
    EXPECT_EQ(told, 3);
}

TEST_F(DescriptorSetTest, TellsOfOneBesideAnotherThatIsLeftUnread) {
    const Pipe unread;
    const Pipe other;
    bool isTold = false;
    auto ignored = m_set.watchReadable(unread.readingEnd(), [] {});
    auto watch = m_set.watchReadable(other.readingEnd(), [&] {
        isTold = true;
        ignored.cancel();
        other.read();
    });
    unread.write();
    other.write();
    settle();
    EXPECT_TRUE(isTold);
}

TEST_F(DescriptorSetTest, TellsWhenTheOtherEndIsClosed) {
    Pipe pipe;
    bool isTold = false;
    Subscription watch;
    watch = m_set.watchReadable(pipe.readingEnd(), [&] {
        isTold = true;
        watch.cancel();
    });
    pipe.closeWritingEnd();
    settle();
    EXPECT_TRUE(isTold);
}

TEST_F(DescriptorSetTest, TellsEverybodyWhoWatchesTheSame) {
    const Pipe pipe;
    int first = 0;
    int second = 0;
    auto one = m_set.watchReadable(pipe.readingEnd(), [&] { ++first; });
    const auto two = m_set.watchReadable(pipe.readingEnd(), [&] {
        ++second;
        pipe.read();
    });
    pipe.write();
    settle();
    one.cancel();
    pipe.write();
    settle();
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);
}

TEST_F(DescriptorSetTest, TellsNoMoreOnceCancelledFromItsOwnCallback) {
    const Pipe pipe;
    int told = 0;
    Subscription watch;
    watch = m_set.watchReadable(pipe.readingEnd(), [&] {
        ++told;
        watch.cancel();
    });
    pipe.write();
    settle();
    EXPECT_EQ(told, 1);
}

TEST_F(DescriptorSetTest, DoesNotTakeADescriptorForAnEarlierOneOfItsNumber) {
    // Both are readable. Whichever is told first has the other replaced by one that is not.
    auto left = std::make_unique<Pipe>();
    auto right = std::make_unique<Pipe>();
    std::optional<Pipe> successor;
    Subscription ofLeft;
    Subscription ofRight;
    bool isSuccessorTold = false;
    const auto replace = [&](std::unique_ptr<Pipe>& pipe, Subscription& watch) {
        if (successor)
            return;
        const int number = pipe->readingEnd();
        watch.cancel();
        pipe.reset();
        successor.emplace();
        EXPECT_EQ(successor->readingEnd(), number);
        watch = m_set.watchReadable(number, [&] { isSuccessorTold = true; });
    };
    ofLeft = m_set.watchReadable(left->readingEnd(), [&] {
        left->read();
        replace(right, ofRight);
    });
    ofRight = m_set.watchReadable(right->readingEnd(), [&] {
        right->read();
        replace(left, ofLeft);
    });
    left->write();
    right->write();
    settle();
    EXPECT_TRUE(successor);
    EXPECT_FALSE(isSuccessorTold);
}

/// For a while no descriptor can be had.
class NoDescriptorLeft {
public:
    NoDescriptorLeft() {
        getrlimit(RLIMIT_NOFILE, &m_before);
        rlimit none = m_before;
        none.rlim_cur = 0;
        setrlimit(RLIMIT_NOFILE, &none);
    }
    NoDescriptorLeft(const NoDescriptorLeft&) = delete;
    NoDescriptorLeft& operator=(const NoDescriptorLeft&) = delete;
    ~NoDescriptorLeft() { setrlimit(RLIMIT_NOFILE, &m_before); }

private:
    rlimit m_before{};
};

TEST(DescriptorSet, HasEachWatchedByItselfWhereTheSystemHasNoneLeft) {
    CountingLoop watching;
    std::optional<DescriptorSet> set;
    {
        const NoDescriptorLeft shortage;
        set.emplace(watching);
    }
    const Pipe pipe;
    bool isTold = false;
    const auto watch = set->watchReadable(pipe.readingEnd(), [&] {
        isTold = true;
        pipe.read();
    });
    pipe.write();
    EXPECT_TRUE(watching.loop.spinUntil([&] { return isTold; }));
    EXPECT_EQ(watching.count(), 1);
}

} // namespace
} // namespace kestrove
