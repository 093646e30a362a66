#include "Core/AppController/AppController.h"

#include <algorithm>

namespace kestrove {

namespace {

/// Often enough that a window that is gone is noticed soon, seldom enough to cost nothing.
constexpr Seconds refreshInterval(5.0);

} // namespace

std::optional<CaptureSource> AppController::initialSource() const {
    if (isAutoFollow(m_followMode))
        return autoDisplaySource(m_with.displayIDUnderMouse());
    const auto& sources = m_with.settings.manualSources.get();
    if (sources.size() == 1)
        return sources.front();
    // Only while it is still picked: the resolver keeps what it chose under an earlier selection.
    const auto current = m_with.sourceResolver.currentSource().get();
    if (current && isManualSource(*current))
        return current;
    if (sources.empty()) {
        logSourceResolution("manualCandidatesUnavailable");
        return std::nullopt;
    }
    return sources.front();
}

std::optional<CaptureSource>
AppController::autoDisplaySource(std::optional<DisplayID> preferred) const {
    const auto& displays = m_latestAvailableDisplayIDs;
    if (displays.empty()) {
        logSourceResolution("availableDisplayUnavailable");
        return std::nullopt;
    }
    if (preferred && std::ranges::find(displays, *preferred) != displays.end())
        return CaptureSource::display(*preferred);
    logSourceResolution(preferred ? "displayIDNotEnumerated" : "displayIDUnavailable");
    return CaptureSource::display(displays.front());
}

bool AppController::isChoosable(CaptureSource source) const {
    return isAutoFollow(m_followMode) ? source.isDisplay() : isManualSource(source);
}

void AppController::beginFollowing(std::optional<CaptureSource> failedSource) {
    m_isFollowing = true;
    // Tracking begins by naming the source it would choose. After a recovery that may be the very
    // one that has just failed, and following it would fail and recover again, without end. Unless
    // the mode or the picks changed meanwhile: then what is shown instead must not stay.
    const auto shown = m_activeSource.get();
    if (shown && isChoosable(*shown))
        m_sourceNotToRetry = failedSource;
    startSourceTracking();
    m_sourceNotToRetry.reset();
    const bool isFirstFailure = failedSource != m_lastFailedSource;
    m_lastFailedSource = failedSource;
    if (isFirstFailure)
        retryFailedSource();
    m_with.sourceRefreshScheduler.schedule(refreshInterval, [this] {
        retryFailedSource();
        scheduleSourceRefresh();
    });
}

/// What failed is tried again the next time that the user does something there: the user may stay
/// there for long, and the tracker tells changes only. Who fails again has to wait for the next
/// refresh: a display that cannot be captured would have the output go back and forth with every
/// movement.
void AppController::retryFailedSource() {
    if (m_lastFailedSource && isAutoFollow(m_followMode))
        m_with.displayTracker.announceNext();
}

void AppController::startSourceTracking() {
    if (isAutoFollow(m_followMode)) {
        m_with.displayTracker.start(m_followMode);
        return;
    }
    const auto& sources = m_with.settings.manualSources.get();
    m_with.sourceResolver.setCandidates(sources);
    m_with.sourceResolver.recompute();
    // With one source or none there is nothing to watch for.
    if (sources.size() >= 2)
        m_with.sourceResolver.start();
    // The resolver announces changes only, and its choice may not be what is shown.
    follow(m_with.sourceResolver.currentSource().get());
}

void AppController::stopSourceTracking() {
    m_isFollowing = false;
    m_with.displayTracker.stop();
    m_with.sourceResolver.stop();
}

void AppController::handleFollowModeChange(FollowMode mode) {
    m_followMode = mode;
    // The user has chosen a mode, and whatever it asks for is worth trying again.
    m_needsDiscardedManualWindowRecovery = false;
    m_lastFailedSource.reset();
    m_with.displayTracker.setMode(mode);
    if (m_isHandlingSourceFailure)
        return;
    if (isAutoFollow(mode)) {
        m_with.sourceResolver.stop();
        if (isSessionActive())
            m_with.displayTracker.start(mode);
        return;
    }
    m_with.displayTracker.stop();
    if (isSessionActive())
        applyManualSources(m_with.settings.manualSources.get());
}

void AppController::applyManualSources(const std::vector<CaptureSource>& sources) {
    m_with.sourceResolver.setCandidates(sources);
    m_with.sourceResolver.recompute();
    if (!isSessionActive())
        return;
    if (sources.size() == 1) {
        m_with.sourceResolver.stop();
        follow(sources.front());
    } else if (sources.empty()) {
        m_with.sourceResolver.stop();
        follow(std::nullopt);
    } else {
        m_with.sourceResolver.start();
        // It announces changes only, and its choice may not be what is shown.
        follow(m_with.sourceResolver.currentSource().get());
    }
}

/// Launches a switch or a wait. Wishes that come before the first of them has begun become one, the
/// last: a source that was named on the way is not even shown for a moment.
void AppController::follow(std::optional<CaptureSource> source) {
    if (source && source == m_sourceNotToRetry)
        return;
    m_tasks.launch(runFollow(++m_followRequest, source));
}

Task<void> AppController::runFollow(std::uint64_t followRequest,
                                    std::optional<CaptureSource> source) {
    if (followRequest != m_followRequest || !isSessionActive())
        co_return;
    const auto session = m_sessionNumber;
    if (source)
        co_await switchTo(*source, Fallback::allowed);
    else
        co_await waitForSource();
    // What the start of the session chose may still be on its way at the engine, and then the start
    // would begin this late, or never.
    if (isActive(session) && hasSettledOn(source) && !m_isFollowing && !m_isHandlingSourceFailure)
        beginFollowing();
}

bool AppController::hasSettledOn(std::optional<CaptureSource> source) const {
    const auto settled =
        source ? CaptureSessionState::running() : CaptureSessionState::waitingForSource();
    return m_isOutputSettled && m_sessionState.get() == settled && m_activeSource.get() == source;
}

} // namespace kestrove
