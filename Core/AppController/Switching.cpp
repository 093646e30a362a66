#include "Core/AppController/AppController.h"

namespace kestrove {

std::uint64_t AppController::beginOutputRequest() {
    m_isOutputSettled = false;
    return ++m_outputRequest;
}

Task<void> AppController::switchTo(CaptureSource source, Fallback fallback) {
    if (m_isHandlingSourceFailure && fallback == Fallback::allowed)
        co_return;
    if (!isSessionActive())
        co_return;
    const auto request = beginOutputRequest();
    if (m_activeSource.get() == source && m_with.captureEngine.currentSource() == source) {
        m_isOutputSettled = true;
        m_sessionState.set(CaptureSessionState::running());
        co_return;
    }
    m_sessionState.set(CaptureSessionState::switching());
    presentSafeOutput();
    const CaptureResult result = co_await m_with.captureEngine.switchSource(source);
    if (!result)
        logError("capture switch failed", result.error());
    if (!isCurrent(request)) {
        co_await settleOvertakenStream();
        co_return;
    }
    if (!result) {
        co_await recoverFromSwitchFailure(result.error(), source, fallback);
        co_return;
    }
    presentSource(source, *result);
}

void AppController::presentSource(CaptureSource source, Size pixelSize) {
    m_with.outputWindow.matchContentAspectRatio(pixelSize);
    if (!m_isContentShown) {
        m_with.outputContainer.setContentView(&m_with.renderer.view());
        m_isContentShown = true;
    }
    m_activeSource.set(source);
    if (m_lastFailedSource == source)
        m_lastFailedSource.reset();
    if (m_with.activeOverlay)
        m_with.activeOverlay->show(source);
    m_isOutputSettled = true;
    m_sessionState.set(CaptureSessionState::running());
}

Task<void> AppController::waitForSource() {
    if (!isSessionActive())
        co_return;
    const auto request = beginOutputRequest();
    co_await m_with.captureEngine.stop();
    if (!isCurrent(request)) {
        co_await settleOvertakenStream();
        co_return;
    }
    presentSafeOutput();
    m_isOutputSettled = true;
    m_sessionState.set(CaptureSessionState::waitingForSource());
}

/// A switch or a wait came back from the engine when it no longer decided. What it did to the
/// stream must not last: a stream that nobody wants is stopped, and a running session gets its own
/// source back. Where another switch is on its way, that one sets the stream right.
Task<void> AppController::settleOvertakenStream() {
    if (!isSessionActive() || m_sessionState.get() == CaptureSessionState::waitingForSource())
        co_await m_with.captureEngine.stop();
    co_await restoreRunningStream();
}

/// Something of the past came back from the engine. If it took the stream away from the session
/// that runs now, the session moves it back.
Task<void> AppController::restoreRunningStream() {
    const auto source = m_activeSource.get();
    if (m_sessionState.get() == CaptureSessionState::running() && m_isOutputSettled && source &&
        m_with.captureEngine.currentSource() != source)
        co_await switchTo(*source, Fallback::allowed);
}

} // namespace kestrove
