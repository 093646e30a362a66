#include "Async/Turns.h"
#include "Async/Sleep.h"
#include "Async/TaskScope.h"
#include "Platform/Simulated/SimulatedMainLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace kestrove {
namespace {

Task<void> work(MainLoop& loop, Turns& turns, char name, std::string* log) {
    const auto turn = co_await turns.take();
    *log += name;
    co_await Sleep(loop, Seconds(1));
    *log += '.';
}

class TurnsTest : public testing::Test {
protected:
    SimulatedMainLoop loop;
    Turns turns{loop};
    std::string log;
    TaskScope scope{loop};
    TaskScope other{loop};
};

TEST_F(TurnsTest, OneAfterTheOtherInTheOrderOfAsking) {
    for (const char name : {'a', 'b', 'c'})
        scope.launch(work(loop, turns, name, &log));
    loop.runUntilIdle();
    EXPECT_EQ(log, "a");
    loop.advance(Seconds(5));
    EXPECT_EQ(log, "a.b.c.");
}

TEST_F(TurnsTest, AFreeTurnIsTakenAgain) {
    scope.launch(work(loop, turns, 'a', &log));
    loop.advance(Seconds(2));
    scope.launch(work(loop, turns, 'b', &log));
    loop.advance(Seconds(2));
    EXPECT_EQ(log, "a.b.");
}

TEST_F(TurnsTest, ADroppedTaskGivesItsTurnBack) {
    other.launch(work(loop, turns, 'a', &log));
    scope.launch(work(loop, turns, 'b', &log));
    loop.runUntilIdle();
    other.cancelAll();
    loop.advance(Seconds(2));
    EXPECT_EQ(log, "ab.");
}

TEST_F(TurnsTest, ATaskDroppedWhileItWaitsIsLeftOut) {
    scope.launch(work(loop, turns, 'a', &log));
    other.launch(work(loop, turns, 'b', &log));
    scope.launch(work(loop, turns, 'c', &log));
    loop.runUntilIdle();
    other.cancelAll();
    loop.advance(Seconds(5));
    EXPECT_EQ(log, "a.c.");
}

TEST_F(TurnsTest, ATaskDroppedWhenItsTurnIsOnTheWayHandsItOn) {
    other.launch(work(loop, turns, 'a', &log));
    TaskScope waiting(loop);
    waiting.launch(work(loop, turns, 'b', &log));
    scope.launch(work(loop, turns, 'c', &log));
    loop.runUntilIdle();
    other.cancelAll(); // posts b's turn
    waiting.cancelAll();
    loop.advance(Seconds(5));
    EXPECT_EQ(log, "ac.");
}

TEST_F(TurnsTest, TasksMayOutliveIt) {
    auto shortLived = std::make_unique<Turns>(loop);
    scope.launch(work(loop, *shortLived, 'a', &log));
    scope.launch(work(loop, *shortLived, 'b', &log));
    loop.runUntilIdle();
    shortLived.reset();
    loop.advance(Seconds(5));
    EXPECT_EQ(log, "a.b.");
}

} // namespace
} // namespace kestrove
