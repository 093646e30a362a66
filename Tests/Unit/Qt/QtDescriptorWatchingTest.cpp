#include "Platform/Qt/QtDescriptorWatching.h"

#include "Tests/Support/QtSpin.h"

#include <gtest/gtest.h>

#include <array>
#include <unistd.h>

namespace kestrove {
namespace {

class QtDescriptorWatchingTest : public testing::Test {
public:
    ~QtDescriptorWatchingTest() override {
        ::close(ends[0]);
        if (ends[1] >= 0)
            ::close(ends[1]);
    }

protected:
    QtDescriptorWatchingTest() { EXPECT_EQ(::pipe(ends.data()), 0); }
    void write() const { EXPECT_EQ(::write(ends[1], "x", 1), 1); }
    void read() const {
        char byte = 0;
        EXPECT_EQ(::read(ends[0], &byte, 1), 1);
    }

    std::array<int, 2> ends{};
    QtDescriptorWatching watching;
};

TEST_F(QtDescriptorWatchingTest, CallsAgainWhileDataIsLeftUnread) {
    int calls = 0;
    const auto subscription = watching.watchReadable(ends[0], [&] { ++calls; });
    write();
    EXPECT_TRUE(spinUntil([&] { return calls >= 3; }));
}

TEST_F(QtDescriptorWatchingTest, CallsWhenTheOtherEndIsClosed) {
    bool called = false;
    Subscription subscription = watching.watchReadable(ends[0], [&] {
        called = true;
        subscription.cancel();
    });
    ::close(std::exchange(ends[1], -1));
    EXPECT_TRUE(spinUntil([&] { return called; }));
}

TEST_F(QtDescriptorWatchingTest, CallsNoMoreOnceCancelledFromItsOwnCallback) {
    int calls = 0;
    Subscription subscription;
    subscription = watching.watchReadable(ends[0], [&] {
        ++calls;
        subscription.cancel();
    });
    write();
    EXPECT_TRUE(spinUntil([&] { return calls == 1; }));
    int otherCalls = 0;
    const auto other = watching.watchReadable(ends[0], [&] {
        ++otherCalls;
        read();
    });
    EXPECT_TRUE(spinUntil([&] { return otherCalls == 1; }));
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace kestrove
