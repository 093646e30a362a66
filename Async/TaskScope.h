#pragma once

#include "Async/MainLoop.h"
#include "Async/Task.h"

#include <memory>

namespace kestrove {

/// Owns what a class has launched. Declared as the last member of its owner, it ends all of it
/// before anything else of the owner goes, so that nothing outlives the owner and nothing is
/// detached.
///
/// A scope may be destroyed by one of its own tasks: that task ends at its next suspension, and
/// must not touch the owner before that.
///
/// Thread: main, but for `post`.
class TaskScope {
public:
    explicit TaskScope(MainLoop& loop);
    TaskScope(const TaskScope&) = delete;
    TaskScope& operator=(const TaskScope&) = delete;
    ~TaskScope();

    /// Starts `task` from the main loop, never inside this call.
    void launch(Task<void> task);

    /// Runs `operation` on the main thread, unless the scope has gone by then. From any thread that
    /// is certain that the scope is alive at the call.
    void post(Operation operation);

    /// Drops everything that was launched or posted and has not ended.
    void cancelAll();

    [[nodiscard]] bool isEmpty() const;

private:
    struct State;

    MainLoop& m_loop;
    /// Never another one: `post` reads it from other threads.
    const std::shared_ptr<State> m_state;
};

} // namespace kestrove
