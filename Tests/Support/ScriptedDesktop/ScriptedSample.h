#pragma once

#include "Desktop/SampleBuffer.h"

#include <string>
#include <utility>

namespace kestrove {

/// A sample with a name, as a test wants it to be: complete, unless it says otherwise.
class ScriptedSample final : public SampleBuffer {
public:
    using Attachments = std::optional<std::vector<SampleAttachments>>;

    ScriptedSample(std::string sampleName, std::uint64_t generation)
        : name(std::move(sampleName))
        , m_generation(generation) {}

    SampleType type() const override { return sampleType; }
    bool isValid() const override { return valid; }
    std::uint64_t generation() const override { return m_generation; }
    const Attachments& attachments() const override { return attached; }

    std::string name;
    SampleType sampleType = SampleType::screen;
    bool valid = true;
    Attachments attached = std::vector{SampleAttachments(static_cast<int>(FrameStatus::complete))};

private:
    std::uint64_t m_generation;
};

} // namespace kestrove
