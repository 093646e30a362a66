#include "Core/CaptureEngine/Reconfiguration.h"

#include "Core/CaptureEngine/CapturePlan.h"

#include <utility>

namespace kestrove {

namespace {

constexpr int queueDepth = 6;

StreamConfiguration makeConfiguration(int fps, Size pixels, std::uint64_t generation) {
    StreamConfiguration configuration;
    configuration.minimumFrameInterval = MediaTime{1, fps};
    configuration.pixelFormat = PixelFormat::bgra32;
    configuration.showsCursor = true;
    configuration.queueDepth = queueDepth;
    configuration.colorSpaceName = ColorSpace::sRGB;
    configuration.width = static_cast<std::int64_t>(pixels.width);
    configuration.height = static_cast<std::int64_t>(pixels.height);
    configuration.generation = generation;
    return configuration;
}

} // namespace

Task<CaptureResult> CaptureEngine::Reconfiguration::run(std::shared_ptr<State> state,
                                                        CaptureSource source) {
    const auto session = state->session;
    const auto turn = co_await state->turns->take();
    Reconfiguration attempt(state, session);
    if (attempt.isOvertaken())
        co_return overtaken();
    // Also stops frames of the previous source that are on their way to the layer, or that the
    // stream goes on making until it has taken the new filter over.
    state->hideFrames();

    // For a display, windows that are not on screen are listed too, so that ours are left out even
    // while they are parked off screen and stay so when they come back.
    const auto listed = source.isWindow() ? WindowsListed::onScreenOnly : WindowsListed::all;
    auto content =
        co_await state->platform.capture.shareableContent(DesktopWindows::included, listed);
    if (attempt.isOvertaken())
        co_return overtaken();
    if (!content)
        co_return std::unexpected<CaptureError>(std::move(content.error()));
    const auto plan = planCapture(source, *content, state->excludedWindowIDs);
    if (!plan)
        co_return std::unexpected<CaptureError>(plan.error());

    const auto pixels = pixelSize(*plan, state->platform.screens.screens());
    auto configuration = makeConfiguration(state->fps, pixels, ++state->lastGeneration);
    const Size result{static_cast<double>(configuration.width),
                      static_cast<double>(configuration.height)};
    auto applying = attempt.apply(contentFilter(*plan), std::move(configuration));
    auto applied = co_await std::move(applying);
    if (attempt.isOvertaken())
        co_return overtaken();
    if (!applied)
        co_return std::unexpected<CaptureError>(std::move(applied.error()));
    attempt.succeed(source);
    co_return result;
}

CaptureEngine::Reconfiguration::Reconfiguration(std::shared_ptr<State> state, std::uint64_t session)
    : m_state(std::move(state))
    , m_session(session) {}

CaptureEngine::Reconfiguration::~Reconfiguration() {
    // Whoever has overtaken it has set everything right already.
    if (isOvertaken())
        return;
    switch (m_progress) {
    case Progress::unchanged:
        m_state->acceptedGeneration = m_state->currentGeneration;
        return;
    case Progress::changing:
        m_state->forgetStream();
        m_state->hideFrames();
        return;
    case Progress::retargetedOnly:
        // The stream runs on, but it does not show the current source any more: none of its frames
        // is shown until the next reconfiguration.
        m_state->currentGeneration.reset();
        m_state->hideFrames();
        return;
    case Progress::succeeded:
        return;
    }
}

std::unexpected<CaptureError> CaptureEngine::Reconfiguration::overtaken() {
    return std::unexpected<CaptureError>(
        PlatformError("kestrove.CaptureEngine", 1, "the capture was stopped meanwhile"));
}

Task<CaptureEngine::Reconfiguration::Outcome>
CaptureEngine::Reconfiguration::apply(ContentFilter filter, StreamConfiguration configuration) {
    if (m_state->running)
        return retarget(std::move(filter), std::move(configuration));
    return create(std::move(filter), std::move(configuration));
}

Task<CaptureEngine::Reconfiguration::Outcome>
CaptureEngine::Reconfiguration::retarget(ContentFilter filter, StreamConfiguration configuration) {
    const auto live = m_state->running;
    m_progress = Progress::changing;
    auto filtered = co_await live->stream->updateContentFilter(std::move(filter));
    if (isOvertaken())
        co_return overtaken();
    if (!filtered || live->endedWith) {
        m_progress = Progress::unchanged;
        co_return std::unexpected<CaptureError>(filtered ? *live->endedWith : filtered.error());
    }
    // The first frame may come before the platform's answer does. No frame has this generation
    // that was not captured through the new filter.
    m_state->acceptedGeneration = configuration.generation;
    auto configured = co_await live->stream->updateConfiguration(std::move(configuration));
    if (isOvertaken())
        co_return overtaken();
    if (!configured || live->endedWith) {
        m_progress = live->endedWith ? Progress::unchanged : Progress::retargetedOnly;
        co_return std::unexpected<CaptureError>(configured ? *live->endedWith : configured.error());
    }
    co_return Outcome();
}

Task<CaptureEngine::Reconfiguration::Outcome>
CaptureEngine::Reconfiguration::create(ContentFilter filter, StreamConfiguration configuration) {
    const auto live = std::make_shared<State::LiveStream>();
    const auto generation = configuration.generation;
    live->stream = m_state->platform.capture.makeStream(std::move(filter), std::move(configuration),
                                                        m_state->makeStopHandler(live));
    auto added = live->stream->addScreenOutput(m_state->sampleQueue, m_state->makeSampleHandler());
    if (!added)
        co_return std::unexpected<CaptureError>(std::move(added.error()));
    m_progress = Progress::changing;
    m_state->acceptedGeneration = generation;
    auto started = co_await live->stream->startCapture();
    // From here on, letting go of a stream that has started stops it.
    if (isOvertaken())
        co_return overtaken();
    if (!started || live->endedWith)
        co_return std::unexpected<CaptureError>(started ? *live->endedWith : started.error());
    m_state->running = live;
    co_return Outcome();
}

void CaptureEngine::Reconfiguration::succeed(CaptureSource source) {
    m_progress = Progress::succeeded;
    m_state->currentSource = source;
    m_state->currentGeneration = m_state->acceptedGeneration;
}

} // namespace kestrove
