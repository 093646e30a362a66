#pragma once

#include "Async/Turns.h"
#include "Core/CaptureEngine/CaptureEngine.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace kestrove {

/// What the engine, its tasks and its streams' handlers share. The engine ends it; who comes later
/// finds it ended and leaves the renderer alone.
///
/// Thread: main, but for what the handlers do before they cross to it.
class CaptureEngine::State : public std::enable_shared_from_this<State> {
public:
    /// One stream from its making on. Its address is the identity that a stop report is compared
    /// by.
    struct LiveStream {
        std::shared_ptr<CaptureStream> stream;
        /// Set when the platform has ended it.
        std::optional<PlatformError> endedWith;
    };

    State(FrameRenderer& frameRenderer, CaptureEnginePlatform desktop);

    [[nodiscard]] SampleHandler makeSampleHandler();
    [[nodiscard]] StopHandler makeStopHandler(const std::shared_ptr<LiveStream>& live);

    /// Empties the layer, and lets no frame into it until a generation is accepted.
    void hideFrames();
    /// Drops the running stream and all that was known of it.
    void forgetStream();
    /// Makes the reconfigurations that are in progress or wait for their turn fail.
    void overtakeReconfigurations();
    void end();
    void logFailure(std::string_view what, const PlatformError& error) const;

    FrameRenderer& renderer;
    CaptureEnginePlatform platform;
    std::shared_ptr<SerialQueue> sampleQueue;
    std::shared_ptr<LiveStream> running;
    std::optional<CaptureSource> currentSource;
    WindowIDSet excludedWindowIDs;
    int fps = 30;
    std::function<void()> onUnexpectedStop;

    /// The configuration generation given out last. Never 0, so that a sample that was never given
    /// one is not shown.
    std::uint64_t lastGeneration = 0;
    /// That of the current source's frames.
    std::optional<std::uint64_t> currentGeneration;
    /// The only one whose frames are shown now.
    std::optional<std::uint64_t> acceptedGeneration;

    /// Counts the calls of `stop`: a reconfiguration that began under another number is overtaken.
    std::uint64_t session = 0;
    std::unique_ptr<Turns> turns;

private:
    void show(SampleBufferPointer sample);
    void handleUnexpectedStop(const std::shared_ptr<LiveStream>& stopped, PlatformError error);
};

} // namespace kestrove
