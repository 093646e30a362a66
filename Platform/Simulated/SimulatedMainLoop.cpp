#include "Platform/Simulated/SimulatedMainLoop.h"

#include "Platform/Simulated/Misuse.h"

#include <algorithm>
#include <optional>
#include <string>

namespace kestrove {

struct SimulatedMainLoop::TimerState {
    TimerState(Operation work, Clock every)
        : operation(std::move(work))
        , interval(every) {}
    Operation operation;
    Clock interval;
    std::optional<Due> due;
    SimulatedMainLoop* loop = nullptr;
};

class SimulatedMainLoop::TimerWork final : public Timer::Work {
public:
    explicit TimerWork(std::shared_ptr<TimerState> state)
        : m_state(std::move(state)) {}
    ~TimerWork() override {
        if (m_state->loop && m_state->due) {
            m_state->loop->requireMainThread("cancelling a timer");
            m_state->loop->m_timers.erase(*m_state->due);
        }
        m_state->due.reset();
        m_state->interval = Clock(0);
    }
    bool isPending() const override { return m_state->due.has_value(); }

private:
    std::shared_ptr<TimerState> m_state;
};

class SimulatedMainLoop::Queue final : public SerialQueue {
public:
    Queue(SimulatedMainLoop& loop, std::string label)
        : m_loop(loop)
        , m_label(std::move(label))
        , m_isRunning(std::make_shared<bool>(false)) {}
    ~Queue() override {
        if (*m_isRunning)
            abortOnMisuse("a serial queue destroyed from one of its own operations");
    }
    const std::string& label() const override { return m_label; }
    void post(Operation operation) override {
        auto guarded = [isRunning = std::weak_ptr(m_isRunning),
                        run = std::move(operation)]() mutable {
            const auto alive = isRunning.lock();
            if (!alive)
                return;
            *alive = true;
            run();
            *alive = false;
        };
        m_loop.enqueue(std::move(guarded), Where::serialQueue);
    }

private:
    SimulatedMainLoop& m_loop;
    std::string m_label;
    std::shared_ptr<bool> m_isRunning;
};

SimulatedMainLoop::SimulatedMainLoop()
    : m_thread(std::this_thread::get_id()) {}

SimulatedMainLoop::~SimulatedMainLoop() {
    for (const auto& [due, timer] : m_timers)
        timer->loop = nullptr;
    // One by one, because what an operation owned may queue something as it goes.
    while (!m_queue.empty()) {
        const auto dropped = std::move(m_queue.front());
        m_queue.pop_front();
    }
}

SimulatedMainLoop::Clock SimulatedMainLoop::ticks(Seconds duration) {
    return std::chrono::round<Clock>(duration);
}

void SimulatedMainLoop::post(Operation operation) {
    enqueue(std::move(operation), Where::mainThread);
}

void SimulatedMainLoop::enqueue(Operation operation, Where where) {
    if (std::this_thread::get_id() != m_thread)
        abortOnMisuse("posted to the simulated loop from another thread");
    const bool isFromQueue = m_where == Where::serialQueue && where == Where::mainThread;
    if (isFromQueue && (m_delayOfQueues > Clock(0) || m_lastArrival > m_now)) {
        enqueueLate(std::move(operation));
        return;
    }
    m_queue.push_back({std::move(operation), where});
}

void SimulatedMainLoop::enqueueLate(Operation operation) {
    m_lastArrival = std::max(m_lastArrival, m_now + m_delayOfQueues);
    auto arrival = std::make_shared<TimerState>(std::move(operation), Clock(0));
    arrival->loop = this;
    schedule(arrival, m_lastArrival);
}

Timer SimulatedMainLoop::runAfter(Seconds delay, Operation operation) {
    return addTimer(ticks(delay), Clock(0), std::move(operation));
}

Timer SimulatedMainLoop::runEvery(Seconds interval, Operation operation) {
    if (ticks(interval) <= Clock(0))
        abortOnMisuse("a repeating timer without a positive interval");
    return addTimer(ticks(interval), ticks(interval), std::move(operation));
}

std::shared_ptr<SerialQueue> SimulatedMainLoop::makeSerialQueue(std::string label) {
    return std::make_shared<Queue>(*this, std::move(label));
}

bool SimulatedMainLoop::isMainThread() const {
    return std::this_thread::get_id() == m_thread && m_where == Where::mainThread;
}

void SimulatedMainLoop::requireMainThread(std::string_view what) const {
    if (!isMainThread())
        abortOnMisuse(std::string(what) + " called off the main thread");
}

bool SimulatedMainLoop::runOne() {
    requireMainThread("running the loop");
    if (m_queue.empty()) {
        if (!hasTimerDue(m_now))
            return false;
        fireFirstTimer();
        return true;
    }
    auto next = std::move(m_queue.front());
    m_queue.pop_front();
    const auto before = std::exchange(m_where, next.where);
    next.operation();
    // What the operation owned ends where it ran, as on a real queue.
    next.operation = nullptr;
    m_where = before;
    return true;
}

void SimulatedMainLoop::runUntilIdle() {
    constexpr int endless = 1'000'000;
    for (int count = 0; runOne(); ++count) {
        if (count == endless)
            abortOnMisuse("the main loop never becomes idle");
    }
}

void SimulatedMainLoop::advance(Seconds duration) {
    const auto end = m_now + ticks(duration);
    runUntilIdle();
    while (hasTimerDue(end)) {
        fireFirstTimer();
        runUntilIdle();
    }
    // An operation may have advanced the clock itself.
    m_now = std::max(m_now, end);
}

bool SimulatedMainLoop::advanceToNextTimer() {
    runUntilIdle();
    if (m_timers.empty())
        return false;
    fireFirstTimer();
    runUntilIdle();
    return true;
}

void SimulatedMainLoop::stall(Seconds duration) {
    requireMainThread("stalling the loop");
    m_now += ticks(duration);
}

Timer SimulatedMainLoop::addTimer(Clock delay, Clock interval, Operation operation) {
    requireMainThread("setting a timer");
    auto state = std::make_shared<TimerState>(std::move(operation), interval);
    state->loop = this;
    schedule(state, m_now + std::max(delay, Clock(0)));
    return Timer(std::make_unique<TimerWork>(std::move(state)));
}

void SimulatedMainLoop::schedule(const std::shared_ptr<TimerState>& timer, Clock at) {
    timer->due = Due(at, m_sequence++);
    m_timers.emplace(*timer->due, timer);
}

bool SimulatedMainLoop::hasTimerDue(Clock at) const {
    return !m_timers.empty() && m_timers.begin()->first.first <= at;
}

void SimulatedMainLoop::fireFirstTimer() {
    const auto first = m_timers.begin();
    const auto timer = first->second;
    m_now = std::max(m_now, first->first.first);
    m_timers.erase(first);
    timer->due.reset();
    if (timer->interval > Clock(0)) {
        schedule(timer, m_now + timer->interval);
        timer->operation();
        return;
    }
    // Moved out, so that work which is over lets go of what it owned.
    auto once = std::move(timer->operation);
    once();
}

} // namespace kestrove
