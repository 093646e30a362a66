#pragma once

#include <functional>
#include <string>
#include <utility>

namespace kestrove {

/// Work to run once or at each tick of a timer. Must not throw.
using Operation = std::move_only_function<void()>;

/// Runs operations one at a time, in the order in which they were posted.
///
/// Thread: any. Lifetime: destroying the queue waits for the operation that runs and drops the
/// rest; it must not be destroyed from one of its own operations.
class SerialQueue {
public:
    SerialQueue() = default;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    virtual ~SerialQueue() = default;

    /// What diagnostics and debuggers show.
    [[nodiscard]] virtual const std::string& label() const = 0;

    virtual void post(Operation operation) = 0;

    /// As `post`, but the operation may run at once, inside this call: where the caller is on the
    /// thread of the queue and nothing else of the queue runs or waits. For a caller that is done
    /// with its own work.
    virtual void dispatch(Operation operation) { post(std::move(operation)); }
};

} // namespace kestrove
