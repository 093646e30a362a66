#pragma once

#include "Async/MainLoop.h"
#include "Async/Task.h"

#include <coroutine>

namespace kestrove {

/// `co_await Sleep(loop, delay)` continues the task from the main loop, `delay` from now. Dropping
/// the task cancels the wait.
class Sleep {
public:
    Sleep(MainLoop& loop, Seconds delay)
        : m_loop(loop)
        , m_delay(delay) {}

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <class Promise>
    void await_suspend(std::coroutine_handle<Promise> frame) {
        m_timer = m_loop.runAfter(
            m_delay, [frame, context = frame.promise().context] { context->resume(frame); });
    }
    void await_resume() const noexcept {}

private:
    MainLoop& m_loop;
    Seconds m_delay;
    Timer m_timer;
};

} // namespace kestrove
