#pragma once

#include "Desktop/ScreenCapture.h"
#include "Platform/Simulated/SimulatedStream.h"

#include <memory>

namespace kestrove {

/// The user's side of a simulated stream.
class SimulatedCaptureStream final : public CaptureStream {
public:
    SimulatedCaptureStream(MainLoop& loop, std::shared_ptr<SimulatedStream> stream)
        : m_loop(loop)
        , m_stream(std::move(stream)) {}
    ~SimulatedCaptureStream() override { m_stream->abandon(); }

    std::expected<void, PlatformError> addScreenOutput(std::shared_ptr<SerialQueue> queue,
                                                       SampleHandler handler) override;
    Task<std::expected<void, PlatformError>> startCapture() override;
    Task<std::expected<void, PlatformError>> stopCapture() override;
    Task<std::expected<void, PlatformError>> updateContentFilter(ContentFilter filter) override;
    Task<std::expected<void, PlatformError>>
    updateConfiguration(StreamConfiguration configuration) override;

private:
    MainLoop& m_loop;
    std::shared_ptr<SimulatedStream> m_stream;
};

} // namespace kestrove
