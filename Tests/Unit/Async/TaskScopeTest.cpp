#include "Async/TaskScope.h"
#include "Async/Completion.h"
#include "Async/Sleep.h"
#include "Platform/Simulated/SimulatedMainLoop.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace kestrove {
namespace {

class TaskScopeTest : public testing::Test {
protected:
    SimulatedMainLoop m_loop;
};

/// Calls `action` when it ends, as a local of a task.
class AtEnd {
public:
    explicit AtEnd(std::function<void()> action)
        : m_action(std::move(action)) {}
    AtEnd(const AtEnd&) = delete;
    AtEnd& operator=(const AtEnd&) = delete;
    ~AtEnd() { m_action(); }

private:
    std::function<void()> m_action;
};

Task<void> sleepThen(MainLoop& loop, Seconds delay, std::function<void()> action) {
    co_await Sleep(loop, delay);
    action();
}

Task<void> callThenSleep(MainLoop& loop, std::function<void()> action, bool* wentOn) {
    action();
    co_await Sleep(loop, Seconds(1));
    *wentOn = true;
}

Task<void> atEnd(MainLoop& loop, std::function<void()> action) {
    const AtEnd guard(std::move(action));
    co_await Sleep(loop, Seconds(1000));
}

class Owner {
public:
    explicit Owner(MainLoop& loop)
        : m_loop(loop)
        , m_scope(loop) {}

    void destroyItselfFromATask(std::unique_ptr<Owner>* place, bool* wentOn) {
        m_scope.launch(callThenSleep(m_loop, [place] { place->reset(); }, wentOn));
    }
    TaskScope& scope() { return m_scope; }

private:
    MainLoop& m_loop;
    TaskScope m_scope;
};

TEST_F(TaskScopeTest, MayBeDestroyedByItsOwnTask) {
    auto owner = std::make_unique<Owner>(m_loop);
    bool wentOn = false;
    owner->destroyItselfFromATask(&owner, &wentOn);
    m_loop.advance(Seconds(10));
    EXPECT_FALSE(owner);
    EXPECT_FALSE(wentOn);
    EXPECT_EQ(m_loop.timerCount(), 0U) << "the sleep went with its task";
}

TEST_F(TaskScopeTest, MayBeDestroyedByATaskThatThenEnds) {
    auto owner = std::make_unique<Owner>(m_loop);
    const auto marker = std::make_shared<int>(0);
    owner->scope().launch(sleepThen(m_loop, Seconds(1), [&owner, marker] { owner.reset(); }));
    m_loop.advance(Seconds(10));
    EXPECT_FALSE(owner);
    EXPECT_EQ(marker.use_count(), 1) << "the task's frame was freed";
}

TEST_F(TaskScopeTest, ATaskMayLaunchAnotherIntoItsScope) {
    TaskScope scope(m_loop);
    std::string log;
    scope.launch(sleepThen(m_loop, Seconds(1), [&] {
        scope.launch(sleepThen(m_loop, Seconds(1), [&] { log += "inner"; }));
        log += "outer,";
    }));
    m_loop.advance(Seconds(1));
    EXPECT_EQ(log, "outer,");
    EXPECT_FALSE(scope.isEmpty());
    m_loop.advance(Seconds(1));
    EXPECT_EQ(log, "outer,inner");
    EXPECT_TRUE(scope.isEmpty());
}

TEST_F(TaskScopeTest, ATaskMayCancelItsSiblingsAndItself) {
    TaskScope scope(m_loop);
    std::string log;
    bool wentOn = false;
    scope.launch(sleepThen(m_loop, Seconds(1), [&] { log += "sibling"; }));
    scope.launch(callThenSleep(m_loop, [&] { scope.cancelAll(); }, &wentOn));
    m_loop.advance(Seconds(10));
    EXPECT_EQ(log, "");
    EXPECT_FALSE(wentOn);
    EXPECT_TRUE(scope.isEmpty());
}

TEST_F(TaskScopeTest, CancellingDropsWhatWasLaunchedAndWhatWasPosted) {
    TaskScope scope(m_loop);
    std::string log;
    scope.launch(sleepThen(m_loop, Seconds(0), [&] { log += "task"; }));
    scope.post([&] { log += "operation"; });
    scope.cancelAll();
    EXPECT_TRUE(scope.isEmpty());
    m_loop.advance(Seconds(10));
    EXPECT_EQ(log, "");
    scope.post([&] { log += "later"; });
    m_loop.runUntilIdle();
    EXPECT_EQ(log, "later");
}

TEST_F(TaskScopeTest, WhatEndsByCancellingMayLaunchAnew) {
    TaskScope scope(m_loop);
    std::string log;
    scope.launch(atEnd(
        m_loop, [&] { scope.launch(sleepThen(m_loop, Seconds(1), [&] { log += "anew"; })); }));
    m_loop.runUntilIdle();
    scope.cancelAll();
    EXPECT_FALSE(scope.isEmpty());
    m_loop.advance(Seconds(1));
    EXPECT_EQ(log, "anew");
}

TEST_F(TaskScopeTest, WhatEndsWithTheScopeCannotLaunchAnew) {
    auto scope = std::make_unique<TaskScope>(m_loop);
    std::string log;
    auto& launching = *scope;
    scope->launch(atEnd(
        m_loop, [&] { launching.launch(sleepThen(m_loop, Seconds(1), [&] { log += "anew"; })); }));
    m_loop.runUntilIdle();
    scope.reset();
    m_loop.advance(Seconds(10));
    EXPECT_EQ(log, "");
}

TEST_F(TaskScopeTest, WhatEndsByCancellingMayDestroyTheScope) {
    auto owner = std::make_unique<Owner>(m_loop);
    std::string log;
    owner->scope().launch(atEnd(m_loop, [&] { owner.reset(); }));
    owner->scope().launch(atEnd(m_loop, [&] { log += "second"; }));
    m_loop.runUntilIdle();
    owner->scope().cancelAll();
    EXPECT_FALSE(owner);
    EXPECT_EQ(log, "second");
}

TEST_F(TaskScopeTest, APostedOperationMayDestroyTheScope) {
    auto owner = std::make_unique<Owner>(m_loop);
    std::string log;
    owner->scope().post([&] { owner.reset(); });
    owner->scope().post([&] { log += "dropped"; });
    m_loop.runUntilIdle();
    EXPECT_FALSE(owner);
    EXPECT_EQ(log, "");
}

TEST_F(TaskScopeTest, PostsFromASerialQueueRunOnTheMainThread) {
    TaskScope scope(m_loop);
    const auto queue = m_loop.makeSerialQueue("samples");
    bool wasOnMainThread = false;
    queue->post([&] {
        EXPECT_FALSE(m_loop.isMainThread());
        scope.post([&] { wasOnMainThread = m_loop.isMainThread(); });
    });
    m_loop.runUntilIdle();
    EXPECT_TRUE(wasOnMainThread);
}

TEST_F(TaskScopeTest, TheLoopMayGoWithTasksThatNeverBegan) {
    const auto marker = std::make_shared<int>(0);
    {
        SimulatedMainLoop loop;
        TaskScope scope(loop);
        scope.launch(sleepThen(loop, Seconds(1), [marker] { ++*marker; }));
        scope.post([marker] { ++*marker; });
    }
    EXPECT_EQ(*marker, 0);
    EXPECT_EQ(marker.use_count(), 1);
}

} // namespace
} // namespace kestrove
