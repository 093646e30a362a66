#include "Async/Completion.h"
#include "Async/Sleep.h"
#include "Async/TaskScope.h"
#include "Platform/Simulated/SimulatedMainLoop.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

Task<int> answerAfter(MainLoop& loop, Seconds delay, int answer) {
    co_await Sleep(loop, delay);
    co_return answer;
}

Task<void> store(MainLoop& loop, int* result) {
    *result = co_await answerAfter(loop, Seconds(2), 42);
}

TEST(Task, RunsFromTheLoopAndGoesOnAfterItsAwaits) {
    SimulatedMainLoop loop;
    TaskScope scope(loop);
    int result = 0;
    scope.launch(store(loop, &result));
    loop.advance(Seconds(1.9));
    EXPECT_EQ(result, 0);
    loop.advance(Seconds(0.1));
    EXPECT_EQ(result, 42);
    EXPECT_TRUE(scope.isEmpty());
}

} // namespace
} // namespace kestrove
