#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace kestrove {

enum class SampleType { screen, audio };

/// What a stream says of a frame, as the number under the frame's status attachment.
enum class FrameStatus : int {
    complete = 0,
    idle = 1,
    blank = 2,
    suspended = 3,
    started = 4,
    stopped = 5,
};

struct SampleAttachments {
    SampleAttachments() = default;
    explicit SampleAttachments(std::optional<int> frameStatus)
        : status(frameStatus) {}

    /// A `FrameStatus` as a number; absent when the stream gave none.
    std::optional<int> status;
};

/// One frame on its way from a stream to a display layer. The pixels stay where the platform keeps
/// them; only the platform's own display layer can show them.
///
/// Thread: immutable, read from any thread; it may be let go of on any thread.
class SampleBuffer {
public:
    SampleBuffer() = default;
    SampleBuffer(const SampleBuffer&) = delete;
    SampleBuffer& operator=(const SampleBuffer&) = delete;
    virtual ~SampleBuffer() = default;

    [[nodiscard]] virtual SampleType type() const = 0;
    [[nodiscard]] virtual bool isValid() const = 0;

    /// The generation of the stream configuration that the frame was made under.
    [[nodiscard]] virtual std::uint64_t generation() const = 0;

    /// One entry a sample of the buffer; absent when the stream attached nothing.
    [[nodiscard]] virtual const std::optional<std::vector<SampleAttachments>>&
    attachments() const = 0;
};

using SampleBufferPointer = std::shared_ptr<const SampleBuffer>;

} // namespace kestrove
