#pragma once

#include "Async/MainLoop.h"

#include <functional>
#include <utility>

namespace kestrove {

/// Runs an action once things have been quiet for an interval: every `schedule` puts the action off
/// anew, so that a burst of events leads to one run, `interval` after the last of them.
///
/// Thread: main. Destroying it cancels what is pending; the action may destroy it.
class Debouncer {
public:
    Debouncer(MainLoop& loop, Seconds interval, std::function<void()> action)
        : m_loop(loop)
        , m_interval(interval)
        , m_action(std::move(action)) {}

    void schedule() { m_pending = m_loop.runAfter(m_interval, m_action); }
    void cancel() { m_pending.cancel(); }
    [[nodiscard]] bool isPending() const { return m_pending.isPending(); }

private:
    MainLoop& m_loop;
    Seconds m_interval;
    std::function<void()> m_action;
    Timer m_pending;
};

} // namespace kestrove
