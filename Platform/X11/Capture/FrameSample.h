#pragma once

#include "Desktop/SampleBuffer.h"
#include "Platform/X11/Capture/FrameSurface.h"
#include "Platform/X11/Capture/Region.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace kestrove::x11 {

/// A frame on its way: the surface it lives in and which of its pixels are new since the sample
/// before it. The pixels stay in the server.
///
/// A sample may be let go of on any thread; `released` is told then, and has to take what the
/// sample held to the main thread.
class FrameSample final : public SampleBuffer {
public:
    struct Content {
        std::shared_ptr<FrameSurface> surface;
        /// Pixels of the surface.
        Region damage;
        /// Of the stream's samples, counted from 1: a gap means that a sample between was not
        /// shown.
        std::uint64_t number = 0;
    };
    using Released = std::move_only_function<void(Content)>;

    FrameSample(Content content, std::uint64_t generation, Released released)
        : m_content(std::move(content))
        , m_generation(generation)
        , m_released(std::move(released)) {}
    ~FrameSample() override { m_released(std::move(m_content)); }

    SampleType type() const override { return SampleType::screen; }
    std::uint64_t generation() const override { return m_generation; }
    bool isValid() const override { return m_content.surface != nullptr; }
    const std::optional<std::vector<SampleAttachments>>& attachments() const override {
        return m_attachments;
    }

    [[nodiscard]] const Content& content() const { return m_content; }

private:
    Content m_content;
    std::uint64_t m_generation;
    Released m_released;
    std::optional<std::vector<SampleAttachments>> m_attachments =
        std::vector{SampleAttachments(static_cast<int>(FrameStatus::complete))};
};

} // namespace kestrove::x11
