#pragma once

#include <coroutine>
#include <functional>
#include <memory>

namespace kestrove {

/// One launched task with everything it awaits: the chain of coroutine frames that one root frame
/// owns. It runs the chain, and destroys it when it is done or abandoned.
///
/// A chain that is running cannot be destroyed under itself: `abandon` then takes effect when the
/// chain suspends next.
///
/// Thread: main.
class TaskContext : public std::enable_shared_from_this<TaskContext> {
public:
    explicit TaskContext(std::coroutine_handle<> root)
        : m_root(root) {}
    TaskContext(const TaskContext&) = delete;
    TaskContext& operator=(const TaskContext&) = delete;
    ~TaskContext();

    /// Runs the root from its beginning. `finished` is called once when it has run to its end, not
    /// when it was abandoned.
    void start(std::move_only_function<void()> finished);

    /// Continues the chain at `frame`, one of its own that is suspended.
    void resume(std::coroutine_handle<> frame);

    /// Drops the chain: nothing of it runs after its next suspension.
    void abandon();

private:
    void destroyRoot();

    std::coroutine_handle<> m_root;
    std::move_only_function<void()> m_finished;
    bool m_isRunning = false;
    bool m_isAbandoned = false;
};

} // namespace kestrove
