#include "Core/CaptureEngine/CaptureEngine.h"

#include "Core/CaptureEngine/CaptureEngineState.h"
#include "Core/CaptureEngine/Reconfiguration.h"

#include <algorithm>
#include <utility>

namespace kestrove {

CaptureEngine::CaptureEngine(FrameRenderer& renderer, CaptureEnginePlatform platform)
    : m_state(std::make_shared<State>(renderer, std::move(platform))) {}

CaptureEngine::~CaptureEngine() {
    m_state->end();
}

std::optional<CaptureSource> CaptureEngine::currentSource() const {
    return m_state->currentSource;
}

void CaptureEngine::setOnUnexpectedStop(std::function<void()> callback) {
    m_state->onUnexpectedStop = std::move(callback);
}

void CaptureEngine::setExcludedWindowIDs(WindowIDSet windows) {
    m_state->excludedWindowIDs = std::move(windows);
}

void CaptureEngine::setFPS(int framesPerSecond) {
    m_state->fps = std::clamp(framesPerSecond, 1, 60);
}

Task<CaptureResult> CaptureEngine::start(CaptureSource source) {
    return Reconfiguration::run(m_state, source);
}

Task<CaptureResult> CaptureEngine::switchSource(CaptureSource to) {
    return Reconfiguration::run(m_state, to);
}

Task<void> CaptureEngine::stop() {
    return stop(m_state);
}

Task<void> CaptureEngine::stop(std::shared_ptr<State> state) {
    // Everything is forgotten before the platform is asked, so that the source is gone for good
    // from the call on: no frame, no stop report and no reconfiguration in progress brings it back,
    // and dropping this task changes nothing.
    const auto live = state->running;
    state->overtakeReconfigurations();
    state->forgetStream();
    state->hideFrames();
    if (!live)
        co_return;
    const auto stopped = co_await live->stream->stopCapture();
    if (!stopped)
        state->logFailure("failed to stop SCStream", stopped.error());
}

} // namespace kestrove
