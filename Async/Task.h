#pragma once

#include "Async/TaskContext.h"

#include <coroutine>
#include <exception>
#include <optional>
#include <utility>

namespace kestrove {

template <class Value>
class Task;

/// What the promises of all tasks share. Awaitables of our own reach the chain's context through
/// it.
class TaskPromiseBase {
public:
    struct FinalAwaiter {
        [[nodiscard]] bool await_ready() const noexcept { return false; }
        template <class Promise>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> frame) const noexcept {
            const auto awaiting = frame.promise().continuation;
            return awaiting ? awaiting : std::noop_coroutine();
        }
        void await_resume() const noexcept {}
    };

    [[nodiscard]] std::suspend_always initial_suspend() const noexcept { return {}; }
    [[nodiscard]] FinalAwaiter final_suspend() const noexcept { return {}; }
    // Failures are values here: an exception that reaches a task's edge is a programming error.
    [[noreturn]] void unhandled_exception() const noexcept { std::terminate(); }

    std::coroutine_handle<> continuation;
    TaskContext* context = nullptr;
};

template <class Value>
class TaskPromise : public TaskPromiseBase {
public:
    Task<Value> get_return_object();
    template <class Result>
    void return_value(Result&& result) {
        m_value.emplace(std::forward<Result>(result));
    }
    Value take() { return std::move(*m_value); }

private:
    std::optional<Value> m_value;
};

template <>
class TaskPromise<void> : public TaskPromiseBase {
public:
    Task<void> get_return_object();
    void return_void() const noexcept {}
    void take() const noexcept {}
};

/// Work that suspends: lazy (nothing runs until it is awaited or launched), awaited once, and
/// cancelled by being dropped, with everything that it awaits at that moment.
///
/// Rules for whoever writes one: parameters go by value; no capturing lambda is a coroutine; a
/// temporary of an aggregate type never stands inside a `co_await` expression (g++ 12 frees it
/// twice).
///
/// Thread: main.
template <class Value = void>
class [[nodiscard]] Task {
public:
    using promise_type = TaskPromise<Value>;
    using Handle = std::coroutine_handle<promise_type>;

    explicit Task(Handle frame)
        : m_frame(frame) {}
    Task(Task&& other) noexcept
        : m_frame(std::exchange(other.m_frame, nullptr)) {}
    Task& operator=(Task&& other) noexcept {
        if (this != &other) {
            destroy();
            m_frame = std::exchange(other.m_frame, nullptr);
        }
        return *this;
    }
    Task(const Task&) = delete;
    Task& operator=(const Task&) = delete;
    ~Task() { destroy(); }

    class Awaiter {
    public:
        explicit Awaiter(Handle frame)
            : m_frame(frame) {}
        [[nodiscard]] bool await_ready() const noexcept { return false; }
        template <class Promise>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> awaiting) noexcept {
            m_frame.promise().continuation = awaiting;
            m_frame.promise().context = awaiting.promise().context;
            return m_frame;
        }
        Value await_resume() { return m_frame.promise().take(); }

    private:
        Handle m_frame;
    };
    Awaiter operator co_await() && noexcept { return Awaiter(m_frame); }

    /// Gives the frame away, to whoever will run and destroy it.
    [[nodiscard]] Handle release() { return std::exchange(m_frame, nullptr); }

private:
    void destroy() {
        if (const auto frame = std::exchange(m_frame, nullptr))
            frame.destroy();
    }

    Handle m_frame;
};

template <class Value>
Task<Value> TaskPromise<Value>::get_return_object() {
    return Task<Value>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}

inline Task<void> TaskPromise<void>::get_return_object() {
    return Task<void>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}

} // namespace kestrove
