#include "Core/AppController/AppController.h"

#include "Core/AppController/CaptureRecoveryPolicy.h"

#include <algorithm>

namespace kestrove {

namespace {

CaptureRecoveryReason recoveryReason(const CaptureError& error, bool couldFallBack) {
    const auto* const engineError = std::get_if<EngineError>(&error);
    const bool sourceIsGone = engineError && (*engineError == EngineError::displayNotFound ||
                                              *engineError == EngineError::windowNotFound);
    return couldFallBack && sourceIsGone ? CaptureRecoveryReason::sourceUnavailable
                                         : CaptureRecoveryReason::switchFailed;
}

void insertSources(CaptureSourceSet& sources, const std::vector<CaptureSourceInfo>& list) {
    for (const auto& info : list)
        sources.insert(info.source);
}

} // namespace

Task<void> AppController::recoverFromSwitchFailure(CaptureError error, CaptureSource failedSource,
                                                   Fallback fallback) {
    const auto session = m_sessionNumber;
    m_isHandlingSourceFailure = true;
    stopSourceTracking();
    cancelSourceRefresh();
    co_await m_with.captureEngine.stop();
    if (session != m_sessionNumber) {
        co_await restoreRunningStream();
        co_return;
    }
    presentSafeOutput();

    const auto permission = m_with.permissionAccess.current();
    if (permission != ScreenRecordingPermission::granted) {
        co_await stopForPermissionLoss(permission);
    } else {
        co_await refreshAvailableSources();
        if (isActive(session)) {
            const bool couldFallBack = fallback == Fallback::allowed;
            const auto next = couldFallBack ? fallbackSource(failedSource) : std::nullopt;
            if (next)
                co_await switchTo(*next, Fallback::forbidden);
            else
                co_await stopForRecovery(recoveryReason(error, couldFallBack));
        }
    }
    if (session != m_sessionNumber)
        co_return;
    m_isHandlingSourceFailure = false;
    if (isSessionActive() && !m_isFollowing)
        beginFollowing(failedSource);
}

std::optional<CaptureSource> AppController::fallbackSource(CaptureSource failedSource) const {
    if (m_followMode == FollowMode::manual) {
        CaptureSourceSet available;
        insertSources(available, m_availableSources.get().displays);
        insertSources(available, m_availableSources.get().windows);
        return CaptureRecoveryPolicy::nextSource(failedSource, m_with.settings.manualSources.get(),
                                                 available);
    }
    std::vector<CaptureSource> displays;
    std::ranges::transform(m_latestAvailableDisplayIDs, std::back_inserter(displays),
                           CaptureSource::display);
    return CaptureRecoveryPolicy::nextSource(failedSource, displays,
                                             CaptureSourceSet(displays.begin(), displays.end()));
}

void AppController::captureStreamDidStop() {
    if (!isSessionActive())
        return;
    auto source = m_activeSource.get();
    if (!source)
        source = m_with.captureEngine.currentSource();
    if (!source)
        return;
    if (hasTerminated(*source)) {
        // Nothing comes back that could be waited for. The session goes on with what else was
        // picked, or waits until something is.
        presentSafeOutput();
        pruneTerminatedManualSources({*source});
        return;
    }
    sourceVisibilityCoordinator().setInterruptedSource(source);
    safelyStopAfterStreamInterruption(*source);
}

/// Whether the source is a picked window that was closed, or whose application has quit. While the
/// session is locked nobody can tell. A recovery in progress chooses by itself.
bool AppController::hasTerminated(CaptureSource source) const {
    if (!source.isWindow() || m_followMode != FollowMode::manual || m_isHandlingSourceFailure)
        return false;
    const auto& selections = m_with.settings.manualWindowSelections();
    const auto picked = selections.find(source.identifier());
    return picked != selections.end() &&
           m_with.windowExistenceChecker.existence(
               picked->second, m_with.sessionLockState.state()) == WindowExistence::terminated;
}

void AppController::safelyStopAfterStreamInterruption(CaptureSource /*source*/) {
    if (!isSessionActive())
        return;
    // The stream is dead already. The refresh goes on: it notices when the source is back.
    stopSourceTracking();
    presentSafeOutput();
    const auto permission = m_with.permissionAccess.current();
    m_permissionStatus.set(permission);
    m_sessionState.set(
        permission == ScreenRecordingPermission::granted
            ? CaptureSessionState::recoveryRequired(CaptureRecoveryReason::streamStopped)
            : CaptureSessionState::permissionRequired(permission));
}

Task<void> AppController::safelyStopIfActiveSourceTerminated(CaptureSourceSet terminated) {
    const auto source = m_activeSource.get();
    if (source && terminated.contains(*source))
        co_await waitForSource();
}

Task<bool> AppController::resumeInterruptedSource(CaptureSource source) {
    // What the user never picked by hand is not resumed behind the user's back.
    if (m_sessionState.get() !=
            CaptureSessionState::recoveryRequired(CaptureRecoveryReason::streamStopped) ||
        !isManualSource(source))
        co_return false;
    beginSession();
    const auto session = m_sessionNumber;
    co_await switchTo(source, Fallback::forbidden);
    if (!isActive(session))
        co_return false;
    if (!m_isFollowing)
        beginFollowing();
    co_return true;
}

} // namespace kestrove
