#pragma once

#include "Async/Debouncer.h"
#include "Async/Published.h"
#include "Async/Subscription.h"
#include "Core/FollowedDesktop.h"
#include "Core/Settings/FollowMode.h"

#include <optional>

namespace kestrove {

/// Says which display is the active one: that under the pointer (`FollowMode::mouse`) or that with
/// the focused application's largest window (`FollowMode::focusedApp`). It watches pointer or
/// focus, waits until they have been still for the debounce interval, and publishes the display
/// when it is another one. In `FollowMode::manual` it does nothing.
///
/// Thread: main. Lifetime: a subscriber must not destroy the tracker.
class ActiveDisplayTracker {
public:
    enum class Announcement {
        /// Only another display than the current one is published.
        whenChanged,
        /// The display is published also when it is the current one.
        always,
    };

    /// Stopped, with no current display.
    ActiveDisplayTracker(FollowedDesktop desktop, FollowMode mode, Seconds debounceInterval);
    ActiveDisplayTracker(const ActiveDisplayTracker&) = delete;
    ActiveDisplayTracker& operator=(const ActiveDisplayTracker&) = delete;
    ~ActiveDisplayTracker() = default;

    /// The published display, kept when the tracker stops or changes its mode.
    [[nodiscard]] const Published<std::optional<DisplayID>>& currentDisplay() const {
        return m_currentDisplay;
    }

    [[nodiscard]] FollowMode mode() const { return m_mode; }
    /// Only changes the rule; what is watched changes with the next `start`.
    void setMode(FollowMode mode) { m_mode = mode; }

    /// Sets the mode, stops, publishes the display of that mode (always), and then watches what
    /// may change it.
    void start(FollowMode mode);

    void stop();

    /// The next display that is worked out is published also when it is the current one. For a
    /// follower that could not show it. `start` takes it back.
    void announceNext() { m_announcesNext = true; }

    /// Works the display out now.
    void recompute(Announcement announcement);

private:
    [[nodiscard]] std::optional<DisplayID> displayOfFocusedApplication() const;

    FollowedDesktop m_desktop;
    Published<std::optional<DisplayID>> m_currentDisplay{std::nullopt};
    FollowMode m_mode;
    bool m_announcesNext = false;
    Debouncer m_pendingRecompute;
    Subscription m_mouseMonitor;
    Subscription m_localMouseMonitor;
    Subscription m_workspaceObserver;
};

} // namespace kestrove
