#pragma once

#include "Async/MainLoop.h"
#include "Async/Task.h"

#include <coroutine>
#include <memory>
#include <optional>
#include <utility>

namespace kestrove {

/// Joins a callback to a task: an adapter hands a copy to the platform's callback, which completes
/// it once; a task awaits it once. The awaiting task goes on from the main loop, never inside the
/// callback. A task that was dropped meanwhile is not resumed, and the value is thrown away.
///
/// Thread: `complete` from any thread, the rest on the main thread.
template <class Value>
class Completion {
public:
    explicit Completion(MainLoop& loop)
        : m_loop(&loop)
        , m_state(std::make_shared<State>()) {}

    void complete(Value value) const {
        m_loop->post([state = m_state, result = std::move(value)]() mutable {
            state->value.emplace(std::move(result));
            if (const auto frame = std::exchange(state->waiting, nullptr))
                state->context->resume(frame);
        });
    }

    class Awaiter;
    Awaiter operator co_await() const { return Awaiter(m_state); }

private:
    struct State {
        std::optional<Value> value;
        std::coroutine_handle<> waiting;
        TaskContext* context = nullptr;
    };

    MainLoop* m_loop;
    std::shared_ptr<State> m_state;
};

template <class Value>
class Completion<Value>::Awaiter {
public:
    explicit Awaiter(std::shared_ptr<State> state)
        : m_state(std::move(state)) {}
    Awaiter(const Awaiter&) = delete;
    Awaiter& operator=(const Awaiter&) = delete;
    ~Awaiter() { m_state->waiting = nullptr; }

    [[nodiscard]] bool await_ready() const noexcept { return m_state->value.has_value(); }
    template <class Promise>
    void await_suspend(std::coroutine_handle<Promise> frame) noexcept {
        m_state->waiting = frame;
        m_state->context = frame.promise().context;
    }
    Value await_resume() { return std::move(*m_state->value); }

private:
    std::shared_ptr<State> m_state;
};

} // namespace kestrove
