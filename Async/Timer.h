#pragma once

#include <memory>
#include <utility>

namespace kestrove {

/// Delayed or repeating work, owned. Destroying or cancelling it ends the work; both are allowed
/// from inside the work itself.
///
/// Thread: main.
class Timer {
public:
    /// What a loop keeps behind a timer: its destructor ends the work, and keeps the operation
    /// alive until a tick in progress has returned.
    class Work {
    public:
        Work() = default;
        Work(const Work&) = delete;
        Work& operator=(const Work&) = delete;
        virtual ~Work() = default;

        /// Whether a tick is still to come.
        [[nodiscard]] virtual bool isPending() const = 0;
    };

    Timer() = default;
    explicit Timer(std::unique_ptr<Work> work)
        : m_work(std::move(work)) {}

    void cancel() {
        // Moved out first: destroying the work may come back to this timer.
        const auto work = std::move(m_work);
    }

    [[nodiscard]] bool isPending() const { return m_work && m_work->isPending(); }

private:
    std::unique_ptr<Work> m_work;
};

} // namespace kestrove
