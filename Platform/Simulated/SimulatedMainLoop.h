#pragma once

#include "Async/MainLoop.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <thread>
#include <utility>

namespace kestrove {

/// A main loop on a virtual clock: time stands still while work is done and moves only when told
/// to. The clock counts whole nanoseconds, so that 0.1 three times is 0.3.
///
/// Everything runs on the thread that made the loop, in one fixed order, so that a run can be
/// replayed. Work of its serial queues runs on that thread too, but counts as being off the main
/// thread.
class SimulatedMainLoop final : public MainLoop {
public:
    SimulatedMainLoop();
    ~SimulatedMainLoop() override;

    Seconds now() const override { return m_now; }
    void post(Operation operation) override;
    Timer runAfter(Seconds delay, Operation operation) override;
    Timer runEvery(Seconds interval, Operation operation) override;
    std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) override;
    bool isMainThread() const override;

    /// Runs what is queued and the timers that are due, and what these queue, without moving the
    /// clock. Aborts when it never ends.
    void runUntilIdle();

    /// Runs one queued operation or, when none is queued, one timer that is due; false when there
    /// was neither.
    bool runOne();

    /// Moves the clock on by `duration`, running every timer that comes due on the way, in order.
    void advance(Seconds duration);

    /// Moves the clock to the next timer and runs it, with all that is due then; false when no
    /// timer is set.
    bool advanceToNextTimer();

    /// What serial queues post to the main thread arrives that much later from now on, and in its
    /// order, as from threads that are slow.
    void setDelayOfQueues(Seconds delay) { m_delayOfQueues = ticks(delay); }

    /// Lets time pass in which nothing runs, as an operation that keeps the main thread busy does.
    void stall(Seconds duration);

    [[nodiscard]] std::size_t timerCount() const { return m_timers.size(); }
    /// Whether nothing is queued; timers do not count.
    [[nodiscard]] bool isIdle() const { return m_queue.empty(); }

    /// Aborts with `what` unless called on the main thread, outside of serial queues.
    void requireMainThread(std::string_view what) const;

private:
    struct TimerState;
    class TimerWork;
    class Queue;
    enum class Where : std::uint8_t { mainThread, serialQueue };
    using Clock = std::chrono::nanoseconds;
    /// When a timer is due and, among equals, which was set first.
    using Due = std::pair<Clock, std::uint64_t>;
    struct Queued {
        Operation operation;
        Where where;
    };

    static Clock ticks(Seconds duration);
    void enqueue(Operation operation, Where where);
    void enqueueLate(Operation operation);
    Timer addTimer(Clock delay, Clock interval, Operation operation);
    void schedule(const std::shared_ptr<TimerState>& timer, Clock at);
    void fireFirstTimer();
    [[nodiscard]] bool hasTimerDue(Clock at) const;

    Clock m_now{0};
    std::uint64_t m_sequence = 0;
    std::deque<Queued> m_queue;
    std::map<Due, std::shared_ptr<TimerState>> m_timers;
    Clock m_delayOfQueues{0};
    /// When the last of what queues have posted arrives.
    Clock m_lastArrival{0};
    std::thread::id m_thread;
    Where m_where = Where::mainThread;
};

} // namespace kestrove
