#include "Tests/Support/PollMainLoop/PollMainLoop.h"

#include "Tests/Support/PollMainLoop/ThreadSerialQueue.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace kestrove {
namespace {

/// How long the loop sleeps at most while a condition is waited for.
constexpr Seconds longestWait{0.01};

Seconds realTime() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

} // namespace

struct PollMainLoop::TimerState {
    TimerState(Operation work, Seconds every)
        : operation(std::move(work))
        , interval(every) {}
    Operation operation;
    Seconds interval;
    std::optional<Due> due;
};

class PollMainLoop::TimerWork final : public Timer::Work {
public:
    TimerWork(std::shared_ptr<TimerState> state, std::weak_ptr<Timers> timers)
        : m_state(std::move(state))
        , m_timers(std::move(timers)) {}
    ~TimerWork() override {
        const auto timers = m_timers.lock();
        if (timers && m_state->due)
            timers->erase(*m_state->due);
        m_state->due.reset();
    }
    bool isPending() const override { return m_state->due.has_value(); }

private:
    std::shared_ptr<TimerState> m_state;
    std::weak_ptr<Timers> m_timers;
};

PollMainLoop::PollMainLoop()
    : m_thread(std::this_thread::get_id())
    , m_wakeDescriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , m_timers(std::make_shared<Timers>())
    , m_watches(std::make_shared<std::vector<std::shared_ptr<Watch>>>()) {}

PollMainLoop::~PollMainLoop() {
    close(m_wakeDescriptor);
}

Seconds PollMainLoop::now() const {
    return m_heldClock.value_or(realTime());
}

void PollMainLoop::holdClock() {
    m_heldClock = now();
}

void PollMainLoop::advance(Seconds duration) {
    m_heldClock.value() += duration;
}

void PollMainLoop::post(Operation operation) {
    {
        const std::lock_guard lock(m_mutex);
        m_posted.push_back(std::move(operation));
    }
    wake();
}

void PollMainLoop::wake() const {
    // A full counter wakes the loop just as well.
    [[maybe_unused]] const int written = eventfd_write(m_wakeDescriptor, 1);
}

Timer PollMainLoop::runAfter(Seconds delay, Operation operation) {
    return addTimer(delay, Seconds(0), std::move(operation));
}

Timer PollMainLoop::runEvery(Seconds interval, Operation operation) {
    return addTimer(interval, interval, std::move(operation));
}

Timer PollMainLoop::addTimer(Seconds delay, Seconds interval, Operation operation) {
    auto state = std::make_shared<TimerState>(std::move(operation), interval);
    schedule(state, now() + std::max(delay, Seconds(0)));
    return Timer(std::make_unique<TimerWork>(std::move(state), m_timers));
}

void PollMainLoop::schedule(const std::shared_ptr<TimerState>& timer, Seconds at) {
    timer->due = Due(at, m_sequence++);
    m_timers->emplace(*timer->due, timer);
}

std::shared_ptr<SerialQueue> PollMainLoop::makeSerialQueue(std::string label) {
    return std::make_shared<ThreadSerialQueue>(std::move(label));
}

bool PollMainLoop::isMainThread() const {
    return std::this_thread::get_id() == m_thread;
}

Subscription PollMainLoop::watchReadable(int descriptor, std::function<void()> ready) {
    auto watch = std::make_shared<Watch>(descriptor, std::move(ready));
    m_watches->push_back(watch);
    return Subscription([watch, list = std::weak_ptr(m_watches)] {
        watch->isActive = false;
        if (const auto watches = list.lock())
            std::erase(*watches, watch);
    });
}

bool PollMainLoop::spinUntil(const std::function<bool()>& condition, Seconds limit) {
    const auto deadline = realTime() + limit;
    while (true) {
        runUntilIdle();
        if (condition())
            return true;
        if (realTime() >= deadline)
            return false;
        auto wait = longestWait;
        if (!m_timers->empty())
            wait = std::clamp(m_timers->begin()->first.first - now(), Seconds(0), longestWait);
        pollOnce(wait);
    }
}

void PollMainLoop::runUntilIdle() {
    bool ranAny = true;
    while (ranAny) {
        const bool ranPosted = runPosted();
        const bool ranTimers = runDueTimers();
        ranAny = pollOnce(Seconds(0)) || ranPosted || ranTimers;
    }
}

bool PollMainLoop::runPosted() {
    std::deque<Operation> operations;
    {
        const std::lock_guard lock(m_mutex);
        operations.swap(m_posted);
    }
    for (auto& operation : operations) {
        operation();
        // What it owned ends before the next one runs.
        operation = nullptr;
    }
    return !operations.empty();
}

bool PollMainLoop::runDueTimers() {
    const auto start = now();
    bool ranAny = false;
    while (!m_timers->empty() && m_timers->begin()->first.first <= start) {
        const auto timer = m_timers->begin()->second;
        m_timers->erase(m_timers->begin());
        timer->due.reset();
        if (timer->interval > Seconds(0))
            schedule(timer, now() + timer->interval);
        timer->operation();
        ranAny = true;
    }
    return ranAny;
}

bool PollMainLoop::pollOnce(Seconds wait) {
    const auto watches = *m_watches;
    std::vector<pollfd> descriptors{{m_wakeDescriptor, POLLIN, 0}};
    descriptors.reserve(watches.size() + 1);
    for (const auto& watch : watches)
        descriptors.push_back({watch->descriptor, POLLIN, 0});
    const auto milliseconds = static_cast<int>(std::ceil(wait.count() * 1000));
    poll(descriptors.data(), descriptors.size(), milliseconds);

    eventfd_t ignored = 0;
    eventfd_read(m_wakeDescriptor, &ignored);
    bool ranAny = descriptors.front().revents != 0;
    for (std::size_t i = 0; i < watches.size(); ++i) {
        if (descriptors[i + 1].revents == 0 || !watches[i]->isActive)
            continue;
        watches[i]->ready();
        ranAny = true;
    }
    return ranAny;
}

} // namespace kestrove
