#pragma once

#include "Async/SerialQueue.h"
#include "Async/Timer.h"

#include <chrono>
#include <memory>
#include <string>

namespace kestrove {

/// A length of time, or a moment counted from the loop's own start. Always in seconds.
using Seconds = std::chrono::duration<double>;

/// The one clock and the one queue of the system.
///
/// Everything but frame delivery runs on the thread that runs this loop, the main thread. Delayed
/// work, repeating work and "now" come from here and from nowhere else, so that a simulated loop
/// can run hours in milliseconds and replay any run.
///
/// Thread: `post` and `isMainThread` from any thread; everything else on the main thread.
/// Lifetime: outlives everything that holds a reference to it. What is still queued when the loop
/// goes away is dropped without being run.
class MainLoop {
public:
    MainLoop() = default;
    MainLoop(const MainLoop&) = delete;
    MainLoop& operator=(const MainLoop&) = delete;
    virtual ~MainLoop() = default;

    /// Monotonic time since an arbitrary start.
    [[nodiscard]] virtual Seconds now() const = 0;

    /// Runs `operation` on the main thread after the work that is queued already, never inside this
    /// call.
    virtual void post(Operation operation) = 0;

    /// Runs `operation` once, `delay` from now (at once on the next turn when it is not positive).
    [[nodiscard]] virtual Timer runAfter(Seconds delay, Operation operation) = 0;

    /// Runs `operation` every `interval` (which must be positive), first one interval from now.
    /// Ticks that were missed while the main thread was busy are merged into one.
    [[nodiscard]] virtual Timer runEvery(Seconds interval, Operation operation) = 0;

    /// A queue of its own, beside the main thread where what the platform puts there takes time.
    [[nodiscard]] virtual std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) = 0;

    [[nodiscard]] virtual bool isMainThread() const = 0;
};

} // namespace kestrove
