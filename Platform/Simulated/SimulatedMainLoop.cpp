#include "Platform/Simulated/SimulatedMainLoop.h"

#include "Platform/Simulated/Misuse.h"

#include <optional>
#include <string>

namespace kestrove {

struct SimulatedMainLoop::TimerState {
    TimerState(Operation work, Seconds every)
        : operation(std::move(work))
        , interval(every) {}
    Operation operation;
    Seconds interval;
    std::optional<Due> due;
    SimulatedMainLoop* loop = nullptr;
};

class SimulatedMainLoop::TimerWork final : public Timer::Work {
public:
    explicit TimerWork(std::shared_ptr<TimerState> state)
        : m_state(std::move(state)) {}
    ~TimerWork() override {
        if (m_state->loop && m_state->due)
            m_state->loop->m_timers.erase(*m_state->due);
        m_state->due.reset();
        m_state->interval = Seconds(0);
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
        , m_alive(std::make_shared<char>()) {}
    const std::string& label() const override { return m_label; }
    void post(Operation operation) override {
        auto guarded = [alive = std::weak_ptr(m_alive), run = std::move(operation)]() mutable {
            if (alive.lock())
                run();
        };
        m_loop.enqueue(std::move(guarded), Where::serialQueue);
    }

private:
    SimulatedMainLoop& m_loop;
    std::string m_label;
    std::shared_ptr<char> m_alive;
};

SimulatedMainLoop::SimulatedMainLoop()
    : m_thread(std::this_thread::get_id()) {}

SimulatedMainLoop::~SimulatedMainLoop() {
    for (const auto& [due, timer] : m_timers)
        timer->loop = nullptr;
}

void SimulatedMainLoop::post(Operation operation) {
    enqueue(std::move(operation), Where::mainThread);
}

void SimulatedMainLoop::enqueue(Operation operation, Where where) {
    if (std::this_thread::get_id() != m_thread)
        abortOnMisuse("posted to the simulated loop from another thread");
    m_queue.push_back({std::move(operation), where});
}

Timer SimulatedMainLoop::runAfter(Seconds delay, Operation operation) {
    return addTimer(delay, Seconds(0), std::move(operation));
}

Timer SimulatedMainLoop::runEvery(Seconds interval, Operation operation) {
    if (interval <= Seconds(0))
        abortOnMisuse("a repeating timer without a positive interval");
    return addTimer(interval, interval, std::move(operation));
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
    if (m_queue.empty())
        return false;
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
    const auto end = m_now + duration;
    runUntilIdle();
    while (!m_timers.empty() && m_timers.begin()->first.first <= end)
        fireFirstTimer();
    m_now = end;
}

bool SimulatedMainLoop::advanceToNextTimer() {
    runUntilIdle();
    if (m_timers.empty())
        return false;
    fireFirstTimer();
    return true;
}

Timer SimulatedMainLoop::addTimer(Seconds delay, Seconds interval, Operation operation) {
    requireMainThread("setting a timer");
    auto state = std::make_shared<TimerState>(std::move(operation), interval);
    state->loop = this;
    schedule(state, m_now + std::max(delay, Seconds(0)));
    return Timer(std::make_unique<TimerWork>(std::move(state)));
}

void SimulatedMainLoop::schedule(const std::shared_ptr<TimerState>& timer, Seconds at) {
    timer->due = Due(at, m_sequence++);
    m_timers.emplace(*timer->due, timer);
}

void SimulatedMainLoop::fireFirstTimer() {
    const auto first = m_timers.begin();
    const auto timer = first->second;
    m_now = std::max(m_now, first->first.first);
    m_timers.erase(first);
    timer->due.reset();
    if (timer->interval > Seconds(0))
        schedule(timer, m_now + timer->interval);
    timer->operation();
    runUntilIdle();
}

} // namespace kestrove
