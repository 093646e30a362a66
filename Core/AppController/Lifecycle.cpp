#include "Core/AppController/AppController.h"

namespace kestrove {

void AppController::start() {
    if (isOnOrStopping())
        return;
    const auto permission = m_with.permissionAccess.ensure();
    m_permissionStatus.set(permission);
    // A dialog may have run the main loop: whoever started meanwhile has begun the session.
    if (isOnOrStopping())
        return;
    if (permission != ScreenRecordingPermission::granted) {
        presentSafeOutput();
        m_sessionState.set(CaptureSessionState::permissionRequired(permission));
        m_with.permissionAccess.presentAlert(permission);
        return;
    }
    m_with.outputWindow.show();
    m_with.captureEngine.setExcludedWindowIDs(selfCaptureWindowIDs());
    // The user does not wait for it any more. Giving it up later would end the refreshing that this
    // session needs.
    sourceVisibilityCoordinator().setInterruptedSource(std::nullopt);
    beginSession();
    m_tasks.launch(runStart(m_sessionNumber));
}

void AppController::beginSession() {
    ++m_sessionNumber;
    beginOutputRequest();
    ++m_followRequest;
    m_isFollowing = false;
    m_isHandlingSourceFailure = false;
    m_sessionState.set(CaptureSessionState::starting());
}

Task<void> AppController::runStart(SessionNumber session) {
    if (!isActive(session))
        co_return;
    m_isHandlingSourceFailure = true;
    co_await refreshAvailableSources();
    if (session != m_sessionNumber)
        co_return;
    recoverManualModeAfterWindowDiscardIfNeeded();
    m_isHandlingSourceFailure = false;
    if (!isSessionActive())
        co_return;

    const auto source = initialSource();
    if (!source) {
        co_await stopForRecovery(CaptureRecoveryReason::sourceUnavailable);
        co_return;
    }
    co_await switchTo(*source, Fallback::allowed);
    // Not yet following: the switch may have failed, and its recovery has begun it then.
    if (isActive(session) && !m_isFollowing)
        beginFollowing();
}

void AppController::stop() {
    if (!isOnOrStopping())
        return;
    stopSourceTracking();
    cancelSourceRefresh();
    m_sessionState.set(CaptureSessionState::stopping());
    m_tasks.launch(runStop(m_sessionNumber));
}

Task<void> AppController::runStop(SessionNumber session) {
    co_await m_with.captureEngine.stop();
    if (session == m_sessionNumber && m_sessionState.get() == CaptureSessionState::stopping())
        m_sessionState.set(CaptureSessionState::stopped());
    else
        co_await restoreRunningStream();
}

void AppController::refreshIdlePermissionState() {
    if (m_sessionState.get() != CaptureSessionState::stopped())
        return;
    const auto permission = m_with.permissionAccess.current();
    m_permissionStatus.set(permission);
    if (permission != ScreenRecordingPermission::granted)
        m_sessionState.set(CaptureSessionState::permissionRequired(permission));
}

void AppController::presentSafeOutput() {
    m_with.renderer.flush();
    if (m_isContentShown) {
        m_with.outputContainer.setContentView(nullptr);
        m_isContentShown = false;
    }
    m_activeSource.set(std::nullopt);
    if (m_with.activeOverlay)
        m_with.activeOverlay->hide();
}

Task<void> AppController::stopForRecovery(CaptureRecoveryReason reason) {
    return stopSafely(CaptureSessionState::recoveryRequired(reason));
}

Task<void> AppController::stopForPermissionLoss(ScreenRecordingPermission permission) {
    return stopSafely(CaptureSessionState::permissionRequired(permission));
}

Task<void> AppController::stopSafely(CaptureSessionState end) {
    const auto session = m_sessionNumber;
    // What the user picked while the engine was stopping, or a display that became known, may have
    // come to be shown and watched.
    do {
        stopSourceTracking();
        cancelSourceRefresh();
        // A switch on its way must not show anything any more.
        beginOutputRequest();
        presentSafeOutput();
        co_await m_with.captureEngine.stop();
        // Whoever ended the session meanwhile, the user above all, has decided how it ends.
        if (!isActive(session)) {
            co_await restoreRunningStream();
            co_return;
        }
    } while (m_activeSource.get());
    stopSourceTracking();
    m_sessionState.set(end);
    if (const auto permission = end.permission())
        m_permissionStatus.set(*permission);
}

void AppController::cancelSourceRefresh() {
    m_with.sourceRefreshScheduler.cancel();
}

} // namespace kestrove
