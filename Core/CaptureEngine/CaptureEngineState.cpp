#include "Core/CaptureEngine/CaptureEngineState.h"

#include "Core/CaptureEngine/SampleFilter.h"

#include <fmt/format.h>
#include <utility>

namespace kestrove {

namespace {

void writeFailure(SystemLog& log, std::string_view subsystem, std::string_view what,
                  const PlatformError& error) {
    log.write(subsystem, "capture-stream", LogLevel::error,
              fmt::format("{} domain={} code={}", what, error.domain, error.code));
}

} // namespace

CaptureEngine::State::State(FrameRenderer& frameRenderer, CaptureEnginePlatform desktop)
    : renderer(frameRenderer)
    , platform(std::move(desktop))
    , sampleQueue(platform.loop.makeSerialQueue(platform.bundleIdentifier + ".capture.samples"))
    , turns(std::make_unique<Turns>(platform.loop)) {}

SampleHandler CaptureEngine::State::makeSampleHandler() {
    // On the sample queue: the state is carried across, never looked at.
    return [&loop = platform.loop, state = weak_from_this()](SampleBufferPointer sample) {
        if (!isShowable(*sample))
            return;
        auto show = [state, shown = std::move(sample)]() mutable {
            if (const auto alive = state.lock())
                alive->show(std::move(shown));
        };
        // It changes nothing of the engine or the stream, and so needs no turn of its own.
        if (loop.isMainThread())
            show();
        else
            loop.post(std::move(show));
    };
}

StopHandler CaptureEngine::State::makeStopHandler(const std::shared_ptr<LiveStream>& live) {
    return [&loop = platform.loop, &log = platform.log, subsystem = platform.bundleIdentifier,
            state = weak_from_this(), stream = std::weak_ptr(live)](PlatformError error) {
        writeFailure(log, subsystem, "SCStream stopped unexpectedly", error);
        loop.post([state, stream, reported = std::move(error)]() mutable {
            const auto alive = state.lock();
            const auto stopped = stream.lock();
            if (alive && stopped)
                alive->handleUnexpectedStop(stopped, std::move(reported));
        });
    };
}

void CaptureEngine::State::show(SampleBufferPointer sample) {
    if (sample->generation() == acceptedGeneration)
        renderer.display(std::move(sample));
}

void CaptureEngine::State::handleUnexpectedStop(const std::shared_ptr<LiveStream>& stopped,
                                                PlatformError error) {
    stopped->endedWith = std::move(error);
    if (stopped != running)
        return;
    forgetStream();
    hideFrames();
    // Last, and by a copy: the callback may replace itself or destroy the engine.
    if (const auto callback = onUnexpectedStop)
        callback();
}

void CaptureEngine::State::hideFrames() {
    acceptedGeneration.reset();
    renderer.flush();
}

void CaptureEngine::State::forgetStream() {
    running.reset();
    currentSource.reset();
    currentGeneration.reset();
    acceptedGeneration.reset();
}

void CaptureEngine::State::overtakeReconfigurations() {
    ++session;
    // Whoever comes next need not wait for what has been overtaken.
    turns = std::make_unique<Turns>(platform.loop);
}

void CaptureEngine::State::end() {
    overtakeReconfigurations();
    forgetStream();
    onUnexpectedStop = nullptr;
}

void CaptureEngine::State::logFailure(std::string_view what, const PlatformError& error) const {
    writeFailure(platform.log, platform.bundleIdentifier, what, error);
}

} // namespace kestrove
