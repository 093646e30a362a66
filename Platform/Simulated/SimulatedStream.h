#pragma once

#include "Async/Subscription.h"
#include "Async/TaskScope.h"
#include "Desktop/ScreenCapture.h"
#include "Platform/Simulated/SimulatedSampleBuffer.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>

namespace kestrove {

class SimulatedDesktop;

/// A stream as the desktop's side sees it: what it captures, where it stands, and the frames on
/// their way. `SimulatedCaptureStream` is its user's side.
///
/// A frame comes when what the filter shows has changed, no sooner than the minimum interval after
/// the last one, and at once after a start or an update; while as many samples as the queue is deep
/// have not been let go of, changes are merged into the frame that follows.
///
/// Thread: main, but for the samples.
class SimulatedStream : public std::enable_shared_from_this<SimulatedStream> {
public:
    enum class Phase { created, starting, running, stopping, ended };
    using Answer = std::function<void(std::expected<void, PlatformError>)>;

    SimulatedStream(SimulatedDesktop& desktop, int number, ContentFilter filter,
                    StreamConfiguration configuration, StopHandler stopped);
    SimulatedStream(const SimulatedStream&) = delete;
    SimulatedStream& operator=(const SimulatedStream&) = delete;
    ~SimulatedStream() = default;

    [[nodiscard]] int number() const { return m_number; }
    [[nodiscard]] Phase phase() const { return m_phase; }
    [[nodiscard]] const ContentFilter& filter() const { return m_filter; }
    [[nodiscard]] const StreamConfiguration& configuration() const { return m_configuration; }
    [[nodiscard]] std::uint64_t frameCount() const { return m_frameCount; }
    /// Samples that were handed to the queue and that somebody still holds.
    [[nodiscard]] int samplesOnTheirWay() const { return m_samplesOnTheirWay; }

    /// Sends a sample of what the filter shows, whatever the pacing says. Only while running.
    void deliver(SimulatedSampleTraits traits = {});
    /// The platform ends the stream. Only while running.
    void endByItself(PlatformError error);

    // The user's side.
    std::expected<void, PlatformError> addScreenOutput(std::shared_ptr<SerialQueue> queue,
                                                       SampleHandler handler);
    void start(Answer answer);
    void stop(Answer answer);
    void updateContentFilter(ContentFilter filter, Answer answer);
    void updateConfiguration(StreamConfiguration configuration, Answer answer);
    /// Its user has let go of it.
    void abandon();

private:
    void requireStarted(const char* what) const;
    [[nodiscard]] std::optional<PlatformError> findObstacle(const ContentFilter& filter,
                                                            const StreamConfiguration& with) const;
    [[nodiscard]] std::optional<SimulatedPicture> takePictureNow() const;
    void finishStart(const std::optional<PlatformError>& failure, const Answer& answer);
    void worldChanged();
    void deliverWholeFrame();
    void deliverWhenDue();
    void deliverNow();
    void send(SimulatedPicture picture, SimulatedSampleTraits traits);
    void sampleLetGo();
    void end();

    SimulatedDesktop& m_desktop;
    int m_number;
    ContentFilter m_filter;
    StreamConfiguration m_configuration;
    StopHandler m_stopped;
    Phase m_phase = Phase::created;
    std::shared_ptr<SerialQueue> m_queue;
    SampleHandler m_handler;
    std::optional<SimulatedPicture> m_lastPicture;
    Seconds m_lastDelivery{0};
    std::uint64_t m_frameCount = 0;
    int m_samplesOnTheirWay = 0;
    bool m_mustDeliver = false;
    Timer m_nextDelivery;
    Subscription m_worldChanges;
    TaskScope m_scope;
};

} // namespace kestrove
