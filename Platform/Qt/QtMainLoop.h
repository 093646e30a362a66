#pragma once

#include "Async/MainLoop.h"

#include <QObject>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <unordered_map>

namespace kestrove {

/// The main loop on Qt's event loop, which must be that of the thread that made it. It works inside
/// nested event loops too (a modal dialog's, for instance): nothing that is queued waits for them.
///
/// Timers from a tenth of a second up are coarse: the system may fire their ticks together with
/// other wake-ups, a few hundredths of the interval early or late. A single delay is never cut
/// short by that: what comes early waits for the rest.
///
/// Thread and lifetime: those of MainLoop. Outlived by the QCoreApplication.
class QtMainLoop final : public MainLoop {
public:
    QtMainLoop();
    ~QtMainLoop() override;

    Seconds now() const override;
    void post(Operation operation) override;
    Timer runAfter(Seconds delay, Operation operation) override;
    Timer runEvery(Seconds interval, Operation operation) override;
    /// A queue on the main thread: frames are requests to the server here, no pixels, and what is
    /// done with one on its queue takes less time than waking a thread does.
    std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) override;
    bool isMainThread() const override;

private:
    class OperationEvent;
    class Receiver;
    class TimerWork;
    struct TimerState;

    void arm(const std::shared_ptr<TimerState>& timer, Seconds delay);
    void disarm(TimerState& timer);
    void tick(int qtTimer);

    std::thread::id m_thread;
    std::chrono::steady_clock::time_point m_start;
    std::unordered_map<int, std::shared_ptr<TimerState>> m_timers;
    std::unique_ptr<Receiver> m_receiver;
    /// Counts posts. Qt's locks order a post before its run already, but the thread sanitizer, to
    /// which Qt is opaque, sees only this.
    std::atomic<std::uint64_t> m_posts{0};
    std::atomic<bool> m_isEnding = false;
};

} // namespace kestrove
