#include "Platform/Qt/QtMainLoop.h"

#include "Async/MainLoopSerialQueue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimerEvent>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace kestrove {

namespace {

// Below this a coarse timer's error would be visible (a frame of 30 a second, for instance).
constexpr Seconds coarseFrom{0.1};
// Qt counts milliseconds in an int; longer delays are waited for in pieces.
constexpr Seconds longestPiece{1'000'000};

int milliseconds(Seconds duration) {
    const auto piece = std::clamp(duration, Seconds(0), longestPiece);
    return static_cast<int>(std::ceil(piece.count() * 1000));
}

Qt::TimerType precisionFor(Seconds duration) {
    return duration < coarseFrom ? Qt::PreciseTimer : Qt::CoarseTimer;
}

} // namespace

// One event an operation: Qt keeps them in order, delivers them from nested loops too, and lets go
// of those whose receiver has gone.
class QtMainLoop::OperationEvent final : public QEvent {
public:
    explicit OperationEvent(Operation operation)
        : QEvent(eventType())
        , m_operation(std::move(operation)) {}

    void run() {
        // Moved out, so that what the operation owns ends before the next one begins.
        auto operation = std::move(m_operation);
        operation();
    }

    static Type eventType() {
        static const auto type = static_cast<Type>(registerEventType());
        return type;
    }

private:
    Operation m_operation;
};

class QtMainLoop::Receiver final : public QObject {
public:
    explicit Receiver(QtMainLoop& loop)
        : m_loop(loop) {}

    bool event(QEvent* event) override {
        (void)m_loop.m_posts.load(std::memory_order_acquire);
        if (event->type() == OperationEvent::eventType()) {
            static_cast<OperationEvent*>(event)->run();
            return true;
        }
        return QObject::event(event);
    }

    void timerEvent(QTimerEvent* event) override { m_loop.tick(event->timerId()); }

private:
    QtMainLoop& m_loop;
};

struct QtMainLoop::TimerState {
    TimerState(QtMainLoop* owner, Operation work)
        : loop(owner)
        , operation(std::move(work)) {}

    QtMainLoop* loop;
    Operation operation;
    int qtTimer = 0;
    bool isRepeating = false;
    /// When a single delay ends.
    Seconds due{0};
};

class QtMainLoop::TimerWork final : public Timer::Work {
public:
    explicit TimerWork(std::shared_ptr<TimerState> state)
        : m_state(std::move(state)) {}
    ~TimerWork() override {
        if (m_state->loop)
            m_state->loop->disarm(*m_state);
    }
    bool isPending() const override { return m_state->qtTimer != 0; }

private:
    std::shared_ptr<TimerState> m_state;
};

QtMainLoop::QtMainLoop()
    : m_thread(std::this_thread::get_id())
    , m_start(std::chrono::steady_clock::now())
    , m_receiver(std::make_unique<Receiver>(*this)) {}

QtMainLoop::~QtMainLoop() {
    // What a dropped operation owned may post again while it goes: that is dropped as well.
    m_isEnding = true;
    for (const auto& [id, timer] : std::exchange(m_timers, {})) {
        timer->loop = nullptr;
        timer->qtTimer = 0;
    }
    m_receiver.reset();
}

Seconds QtMainLoop::now() const {
    return std::chrono::steady_clock::now() - m_start;
}

void QtMainLoop::post(Operation operation) {
    if (m_isEnding)
        return;
    auto event = std::make_unique<OperationEvent>(std::move(operation));
    m_posts.fetch_add(1, std::memory_order_release);
    QCoreApplication::postEvent(m_receiver.get(), event.release());
}

Timer QtMainLoop::runAfter(Seconds delay, Operation operation) {
    auto state = std::make_shared<TimerState>(this, std::move(operation));
    state->due = now() + delay;
    arm(state, delay);
    return Timer(std::make_unique<TimerWork>(std::move(state)));
}

Timer QtMainLoop::runEvery(Seconds interval, Operation operation) {
    if (interval <= Seconds(0)) {
        std::fputs("kestrove: a repeating timer without a positive interval\n", stderr);
        std::abort();
    }
    auto state = std::make_shared<TimerState>(this, std::move(operation));
    state->isRepeating = true;
    arm(state, interval);
    return Timer(std::make_unique<TimerWork>(std::move(state)));
}

std::shared_ptr<SerialQueue> QtMainLoop::makeSerialQueue(std::string label) {
    return std::make_shared<MainLoopSerialQueue>(*this, std::move(label));
}

bool QtMainLoop::isMainThread() const {
    return std::this_thread::get_id() == m_thread;
}

void QtMainLoop::arm(const std::shared_ptr<TimerState>& timer, Seconds delay) {
    if (m_isEnding) {
        timer->loop = nullptr;
        return;
    }
    timer->qtTimer = m_receiver->startTimer(milliseconds(delay), precisionFor(delay));
    m_timers.emplace(timer->qtTimer, timer);
}

void QtMainLoop::disarm(TimerState& timer) {
    const auto qtTimer = std::exchange(timer.qtTimer, 0);
    if (qtTimer == 0)
        return;
    m_receiver->killTimer(qtTimer);
    // Held until the end: what the operation owns may come back here when it goes.
    const auto ended = m_timers.extract(qtTimer);
}

void QtMainLoop::tick(int qtTimer) {
    const auto found = m_timers.find(qtTimer);
    if (found == m_timers.end())
        return;
    const auto timer = found->second;
    if (!timer->isRepeating) {
        disarm(*timer);
        if (const auto rest = timer->due - now(); rest > Seconds(0)) {
            arm(timer, rest);
            return;
        }
    }
    timer->operation();
}

} // namespace kestrove
