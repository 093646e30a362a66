#pragma once

#include "Async/MainLoop.h"
#include "Desktop/SampleBuffer.h"
#include "Desktop/ScreenCapture.h"
#include "Platform/Simulated/SimulatedPicture.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kestrove {

/// What a simulated stream captured, with everything about where it comes from.
struct SimulatedFrame {
    SimulatedFrame(int ofStream, std::uint64_t frameNumber, Seconds at, ContentFilter shown,
                   StreamConfiguration with, SimulatedPicture what);

    /// The stream's number, counted from 1, and the frame's within its stream.
    int stream;
    std::uint64_t number;
    Seconds capturedAt;
    /// With the windows that were left out.
    ContentFilter filter;
    /// With the size in pixels.
    StreamConfiguration configuration;
    SimulatedPicture picture;

    /// What a pixel of the frame shows.
    [[nodiscard]] SimulatedColor colorAt(Point pixel) const;
};

using SimulatedFramePointer = std::shared_ptr<const SimulatedFrame>;

/// What can be odd about a sample that a test sends by hand.
struct SimulatedSampleTraits {
    SampleType type = SampleType::screen;
    bool isValid = true;
    std::optional<std::vector<SampleAttachments>> attachments =
        std::vector<SampleAttachments>{SampleAttachments(static_cast<int>(FrameStatus::complete))};
};

/// A sample of a simulated stream. The stream counts those that nobody has let go of yet.
class SimulatedSampleBuffer final : public SampleBuffer {
public:
    SimulatedSampleBuffer(SimulatedFramePointer frame, SimulatedSampleTraits traits,
                          std::function<void()> letGo);
    ~SimulatedSampleBuffer() override { m_letGo(); }

    SampleType type() const override { return m_traits.type; }
    bool isValid() const override { return m_traits.isValid; }
    std::uint64_t generation() const override { return m_frame->configuration.generation; }
    const std::optional<std::vector<SampleAttachments>>& attachments() const override {
        return m_traits.attachments;
    }

    [[nodiscard]] const SimulatedFramePointer& frame() const { return m_frame; }

private:
    SimulatedFramePointer m_frame;
    SimulatedSampleTraits m_traits;
    std::function<void()> m_letGo;
};

} // namespace kestrove
