#pragma once

#include "Async/Debouncer.h"
#include "Async/Published.h"
#include "Async/Subscription.h"
#include "Core/CaptureSource/CaptureSource.h"
#include "Core/FollowedDesktop.h"

#include <optional>
#include <vector>

namespace kestrove {

/// Says which of the sources that the user picked is the active one. In this order: the picked
/// window that is in front, the picked display under the pointer, the picked display with the front
/// window, the one that is active already, the first one. It decides anew once pointer and focus
/// have been still for the debounce interval, and publishes the source when it is another one.
///
/// Thread: main. Lifetime: a subscriber must not destroy the resolver.
class ActiveSourceResolver {
public:
    /// Stopped, with no candidates and no current source.
    ActiveSourceResolver(FollowedDesktop desktop, Seconds debounceInterval);
    ActiveSourceResolver(const ActiveSourceResolver&) = delete;
    ActiveSourceResolver& operator=(const ActiveSourceResolver&) = delete;
    ~ActiveSourceResolver() = default;

    /// The published source, kept when the resolver stops.
    [[nodiscard]] const Published<std::optional<CaptureSource>>& currentSource() const {
        return m_currentSource;
    }

    [[nodiscard]] const std::vector<CaptureSource>& candidates() const { return m_candidates; }
    /// The picked sources in the order of picking. Decides nothing by itself: `recompute` does.
    void setCandidates(std::vector<CaptureSource> candidates);

    /// Decides now; publishes only another source than the current one.
    void recompute();

    /// Stops, watches pointer and focus from now on, and decides at once.
    void start();

    void stop();

private:
    [[nodiscard]] std::optional<CaptureSource> pickActiveSource() const;
    [[nodiscard]] bool isCandidate(CaptureSource source) const;
    [[nodiscard]] std::optional<WindowID> frontWindow() const;
    [[nodiscard]] std::optional<DisplayID> displayContaining(WindowID window) const;

    FollowedDesktop m_desktop;
    Published<std::optional<CaptureSource>> m_currentSource{std::nullopt};
    std::vector<CaptureSource> m_candidates;
    Debouncer m_pendingRecompute;
    Subscription m_mouseMonitor;
    Subscription m_localMouseMonitor;
    Subscription m_workspaceObserver;
};

} // namespace kestrove
