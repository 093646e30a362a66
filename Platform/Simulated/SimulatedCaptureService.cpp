#include "Platform/Simulated/SimulatedCaptureService.h"

#include "Platform/Simulated/SimulatedDesktop.h"

#include <algorithm>
#include <utility>

namespace kestrove {

SimulatedCaptureService::SimulatedCaptureService(SimulatedDesktop& desktop)
    : shareableContent(desktop.loop())
    , captureImage(desktop.loop())
    , addScreenOutput(desktop.loop())
    , startCapture(desktop.loop())
    , stopCapture(desktop.loop())
    , updateContentFilter(desktop.loop())
    , updateConfiguration(desktop.loop())
    , m_desktop(desktop)
    , m_platformQueue(desktop.loop().makeSerialQueue("simulated.platform")) {}

std::vector<CaptureCall> SimulatedCaptureService::calls() const {
    std::vector<CaptureCall> calls;
    calls.reserve(m_records.size());
    for (const auto& record : m_records)
        calls.push_back(record.call);
    return calls;
}

std::vector<std::shared_ptr<SimulatedStream>> SimulatedCaptureService::streams() const {
    std::vector<std::shared_ptr<SimulatedStream>> streams;
    for (const auto& each : m_streams) {
        if (auto stream = each.lock())
            streams.push_back(std::move(stream));
    }
    return streams;
}

std::shared_ptr<SimulatedStream> SimulatedCaptureService::latestStream() const {
    return m_streams.empty() ? nullptr : m_streams.back().lock();
}

std::size_t SimulatedCaptureService::runningStreamCount() const {
    return static_cast<std::size_t>(
        std::ranges::count(streams(), SimulatedStream::Phase::running, &SimulatedStream::phase));
}

void SimulatedCaptureService::endAllStreams(const PlatformError& error) {
    m_desktop.requireMainThread("endAllStreams");
    for (const auto& stream : streams()) {
        if (stream->phase() == SimulatedStream::Phase::running)
            stream->endByItself(error);
    }
}

void SimulatedCaptureService::record(CaptureRecord record) {
    record.at = m_desktop.loop().now();
    m_records.push_back(std::move(record));
}

std::shared_ptr<SimulatedStream>
SimulatedCaptureService::makeStream(ContentFilter filter, StreamConfiguration configuration,
                                    StopHandler stopped) {
    const auto stream = std::make_shared<SimulatedStream>(
        m_desktop, ++m_streamCount, std::move(filter), configuration, std::move(stopped));
    std::erase_if(m_streams, [](const auto& each) { return each.expired(); });
    m_streams.push_back(stream);
    return stream;
}

PlatformError simulatedError(SimulatedError error) {
    const auto description = [&] {
        switch (error) {
        case SimulatedError::notAllowed:
            return "recording the screen is not allowed";
        case SimulatedError::displayGone:
            return "the display has gone";
        case SimulatedError::windowGone:
            return "the window has gone";
        case SimulatedError::invalidConfiguration:
            return "the configuration cannot be used";
        case SimulatedError::notRunning:
            return "the stream does not run";
        }
        return "";
    };
    return {"simulated", static_cast<long>(error), description()};
}

std::optional<PlatformError> findCaptureObstacle(const SimulatedDesktop& desktop,
                                                 const ContentFilter& filter,
                                                 const StreamConfiguration& configuration) {
    if (!desktop.isRecordingAllowed())
        return simulatedError(SimulatedError::notAllowed);
    const auto* display = std::get_if<DisplayFilter>(&filter);
    if (display && !desktop.findDisplay(display->displayID))
        return simulatedError(SimulatedError::displayGone);
    if (!display && !desktop.findWindow(std::get<WindowFilter>(filter).windowID))
        return simulatedError(SimulatedError::windowGone);
    if (configuration.width < 1 || configuration.height < 1 || configuration.queueDepth < 1 ||
        configuration.minimumFrameInterval.value < 0 ||
        configuration.minimumFrameInterval.timescale < 1)
        return simulatedError(SimulatedError::invalidConfiguration);
    return std::nullopt;
}

} // namespace kestrove
