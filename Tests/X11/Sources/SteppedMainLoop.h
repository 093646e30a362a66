#pragma once

#include "Async/MainLoop.h"
#include "Platform/Simulated/SimulatedMainLoop.h"

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace kestrove::test {

/// A main loop whose work comes from another one, Qt's, and whose clock stands still until a test
/// moves it: real windows and events, but every delay runs out exactly when the test says so.
///
/// Thread: main, for all but `post`.
class SteppedMainLoop final : public MainLoop {
public:
    /// `events` outlives this.
    explicit SteppedMainLoop(MainLoop& events)
        : m_events(events) {}

    Seconds now() const override { return m_clock.now(); }
    void post(Operation operation) override { m_events.post(std::move(operation)); }
    Timer runAfter(Seconds delay, Operation operation) override {
        ++m_delays[delay];
        return m_clock.runAfter(delay, std::move(operation));
    }
    Timer runEvery(Seconds interval, Operation operation) override {
        return m_clock.runEvery(interval, std::move(operation));
    }
    std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) override {
        return m_events.makeSerialQueue(std::move(label));
    }
    bool isMainThread() const override { return m_events.isMainThread(); }

    /// How often somebody has wished for this very delay.
    [[nodiscard]] int delaysOf(Seconds delay) const {
        const auto found = m_delays.find(delay);
        return found == m_delays.end() ? 0 : found->second;
    }

    void advance(Seconds duration) { m_clock.advance(duration); }

    /// Runs events until `condition` holds, without moving the clock. Says whether it came to hold.
    [[nodiscard]] bool spinUntil(const std::function<bool()>& condition);
    /// The same, moving the clock on a little whenever there is nothing else to do.
    [[nodiscard]] bool runUntil(const std::function<bool()>& condition);

private:
    [[nodiscard]] bool spin(const std::function<bool()>& condition, Seconds step);

    MainLoop& m_events;
    SimulatedMainLoop m_clock;
    std::map<Seconds, int> m_delays;
};

} // namespace kestrove::test
