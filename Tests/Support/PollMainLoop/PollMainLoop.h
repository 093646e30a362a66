#pragma once

#include "Async/MainLoop.h"
#include "Platform/Linux/DescriptorWatching.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace kestrove {

/// A main loop on the real clock over poll(2), for tests that talk to a real X server, and its
/// descriptor watching. It runs only while a test spins it.
///
/// Thread: the one that made it is the main thread.
class PollMainLoop final : public MainLoop, public DescriptorWatching {
public:
    PollMainLoop();
    ~PollMainLoop() override;

    Seconds now() const override;
    void post(Operation operation) override;
    Timer runAfter(Seconds delay, Operation operation) override;
    Timer runEvery(Seconds interval, Operation operation) override;
    /// A queue with a thread of its own.
    std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) override;
    bool isMainThread() const override;

    Subscription watchReadable(int descriptor, std::function<void()> ready) override;

    /// Runs the loop until `condition` holds, which is looked at after every turn, and at least
    /// every few milliseconds in case it depends on something that does not wake the loop. Returns
    /// whether it came to hold within `limit`.
    [[nodiscard]] bool spinUntil(const std::function<bool()>& condition,
                                 Seconds limit = Seconds(10));

    /// Runs what is queued, due or readable now, and what that queues, without waiting.
    void runUntilIdle();

    /// From now on the clock stands still but for `advance`: every delay runs out exactly when the
    /// test says so.
    void holdClock();
    /// Moves the held clock on. What is due by then runs when the loop is spun next.
    void advance(Seconds duration);

    /// Whether something waits for its time.
    [[nodiscard]] bool hasTimers() const { return !m_timers->empty(); }

private:
    struct TimerState;
    class TimerWork;
    struct Watch {
        int descriptor;
        std::function<void()> ready;
        bool isActive = true;
    };
    using Due = std::pair<Seconds, std::uint64_t>;
    using Timers = std::map<Due, std::shared_ptr<TimerState>>;

    Timer addTimer(Seconds delay, Seconds interval, Operation operation);
    void schedule(const std::shared_ptr<TimerState>& timer, Seconds at);
    /// Each of these says whether it ran anything.
    bool runPosted();
    bool runDueTimers();
    bool pollOnce(Seconds wait);
    void wake() const;

    std::thread::id m_thread;
    std::optional<Seconds> m_heldClock;
    int m_wakeDescriptor;
    std::mutex m_mutex;
    /// Guarded by the mutex; everything else belongs to the main thread.
    std::deque<Operation> m_posted;
    std::uint64_t m_sequence = 0;
    std::shared_ptr<Timers> m_timers;
    std::shared_ptr<std::vector<std::shared_ptr<Watch>>> m_watches;
};

} // namespace kestrove
