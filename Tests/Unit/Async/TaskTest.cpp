#include "Async/Completion.h"
#include "Async/Sleep.h"
#include "Async/TaskScope.h"
#include "Platform/Simulated/SimulatedMainLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

namespace kestrove {
namespace {

/// Writes its letter when it ends: a local of a coroutine shows so that the frame was freed.
class Trace {
public:
    Trace(std::string* log, char letter)
        : m_log(log)
        , m_letter(letter) {}
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;
    ~Trace() { *m_log += m_letter; }

private:
    std::string* m_log;
    char m_letter;
};

Task<int> answerAfter(MainLoop& loop, Seconds delay, int answer) {
    co_await Sleep(loop, delay);
    co_return answer;
}

Task<void> store(MainLoop& loop, int* result) {
    *result = co_await answerAfter(loop, Seconds(2), 42);
}

Task<int> answerNow(int answer) {
    co_return answer;
}

Task<void> storeMany(int* sum) {
    for (int i = 0; i < 100; ++i)
        *sum += co_await answerNow(i);
}

class TaskTest : public testing::Test {
protected:
    SimulatedMainLoop m_loop;
};

TEST_F(TaskTest, RunsFromTheLoopAndGoesOnAfterItsAwaits) {
    TaskScope scope(m_loop);
    int result = 0;
    scope.launch(store(m_loop, &result));
    m_loop.advance(Seconds(1.9));
    EXPECT_EQ(result, 0);
    m_loop.advance(Seconds(0.1));
    EXPECT_EQ(result, 42);
    EXPECT_TRUE(scope.isEmpty());
}

TEST_F(TaskTest, NeverRunsInsideTheLaunchAndNotAtAllUnlessLaunched) {
    TaskScope scope(m_loop);
    int sum = 0;
    {
        const auto neverLaunched = storeMany(&sum);
    }
    scope.launch(storeMany(&sum));
    EXPECT_EQ(sum, 0);
    m_loop.runUntilIdle();
    EXPECT_EQ(sum, 4950);
}

TEST_F(TaskTest, AMovedTaskIsTheOneThatRuns) {
    TaskScope scope(m_loop);
    int first = 0;
    int second = 0;
    auto task = store(m_loop, &first);
    task = store(m_loop, &second);
    auto moved = std::move(task);
    scope.launch(std::move(moved));
    m_loop.advance(Seconds(2));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 42);
}

Task<std::unique_ptr<int>> makeUnique() {
    co_return std::make_unique<int>(7);
}

Task<void> storeUnique(int* result) {
    const auto unique = co_await makeUnique();
    *result = *unique;
}

TEST_F(TaskTest, GivesValuesThatCanOnlyBeMoved) {
    TaskScope scope(m_loop);
    int result = 0;
    scope.launch(storeUnique(&result));
    m_loop.runUntilIdle();
    EXPECT_EQ(result, 7);
}

// A task of four levels with every kind of suspension. Where it is dropped, what was entered and
// not left must be freed, innermost first, and nothing after that point may run.

Task<void> innermost(MainLoop& loop, Completion<int> completion, std::string* log) {
    const Trace trace(log, 'd');
    *log += '1';
    co_await Sleep(loop, Seconds(1));
    *log += '2';
    (void)co_await completion;
    *log += '3';
    co_await Sleep(loop, Seconds(0));
    *log += '4';
}

Task<int> middle(MainLoop& loop, Completion<int> completion, std::string* log) {
    const Trace trace(log, 'c');
    co_await innermost(loop, completion, log);
    *log += '5';
    co_await Sleep(loop, Seconds(1));
    *log += '6';
    co_return 0;
}

Task<void> outer(MainLoop& loop, Completion<int> completion, std::string* log) {
    const Trace trace(log, 'b');
    (void)co_await middle(loop, completion, log);
    *log += '7';
    co_await Sleep(loop, Seconds(1));
    *log += '8';
}

struct DropCase {
    const char* name;
    /// How far the clock goes before the completion is completed, and after it.
    Seconds before;
    bool isCompleted;
    bool runsAfterCompletion;
    Seconds after;
    const char* log;
};

class DroppedTask : public testing::TestWithParam<DropCase> {};

TEST_P(DroppedTask, FreesEverythingAndRunsNoFurther) {
    const auto& drop = GetParam();
    SimulatedMainLoop loop;
    const Completion<int> completion(loop);
    std::string log;
    auto scope = std::make_unique<TaskScope>(loop);
    scope->launch(outer(loop, completion, &log));
    if (drop.before >= Seconds(0))
        loop.advance(drop.before);
    if (drop.isCompleted)
        completion.complete(1);
    if (drop.runsAfterCompletion)
        loop.advance(drop.after);
    scope.reset();
    EXPECT_EQ(log, drop.log);
    if (!drop.isCompleted)
        completion.complete(1);
    loop.advance(Seconds(100));
    EXPECT_EQ(log, drop.log);
    EXPECT_EQ(loop.timerCount(), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    EverySuspension, DroppedTask,
    testing::Values(
        DropCase{"BeforeItBegan", Seconds(-1), false, false, Seconds(0), ""},
        DropCase{"InANestedSleep", Seconds(0.5), false, false, Seconds(0), "1dcb"},
        DropCase{"AtACompletionNotCompleted", Seconds(1), false, false, Seconds(0), "12dcb"},
        DropCase{"AtACompletionOnItsWay", Seconds(1), true, false, Seconds(0), "12dcb"},
        DropCase{"InTheMiddlesSleep", Seconds(1), true, true, Seconds(0.5), "1234d5cb"},
        DropCase{"InTheOutersSleep", Seconds(1), true, true, Seconds(1.5), "1234d56c7b"},
        DropCase{"AfterItsEnd", Seconds(1), true, true, Seconds(2), "1234d56c78b"}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(TaskTest, DroppedAtASleepOfNoLengthItDoesNotGoOn) {
    std::string log;
    const Completion<int> completion(m_loop);
    TaskScope scope(m_loop);
    scope.launch(outer(m_loop, completion, &log));
    m_loop.advance(Seconds(1));
    completion.complete(1);
    ASSERT_TRUE(m_loop.runOne());
    EXPECT_EQ(log, "123");
    scope.cancelAll();
    m_loop.advance(Seconds(100));
    EXPECT_EQ(log, "123dcb");
}

Task<void> storeCompletion(Completion<std::string> completion, std::string* result) {
    *result = co_await completion;
}

TEST_F(TaskTest, ACompletionMayBeCompletedBeforeItIsAwaited) {
    const Completion<std::string> completion(m_loop);
    completion.complete("early");
    m_loop.runUntilIdle();
    TaskScope scope(m_loop);
    std::string result;
    scope.launch(storeCompletion(completion, &result));
    m_loop.runUntilIdle();
    EXPECT_EQ(result, "early");
}

TEST_F(TaskTest, ACompletionResumesFromTheLoopAndNotInsideTheCallback) {
    const Completion<std::string> completion(m_loop);
    TaskScope scope(m_loop);
    std::string result;
    scope.launch(storeCompletion(completion, &result));
    m_loop.runUntilIdle();
    const auto queue = m_loop.makeSerialQueue("platform");
    queue->post([completion] { completion.complete("from elsewhere"); });
    ASSERT_TRUE(m_loop.runOne());
    EXPECT_EQ(result, "");
    m_loop.runUntilIdle();
    EXPECT_EQ(result, "from elsewhere");
}

TEST_F(TaskTest, TheValueOfADroppedTaskIsThrownAway) {
    const auto marker = std::make_shared<int>(0);
    {
        const Completion<std::shared_ptr<int>> completion(m_loop);
        completion.complete(marker);
        m_loop.runUntilIdle();
    }
    EXPECT_EQ(marker.use_count(), 1);
}

} // namespace
} // namespace kestrove
