#pragma once

#include "Desktop/ScreenCapture.h"
#include "Platform/Simulated/SimulatedOperation.h"
#include "Platform/Simulated/SimulatedStream.h"

#include <memory>
#include <optional>
#include <set>
#include <vector>

namespace kestrove {

class SimulatedDesktop;

enum class CaptureCall {
    shareableContent,
    captureImage,
    makeStream,
    addScreenOutput,
    startCapture,
    stopCapture,
    updateContentFilter,
    updateConfiguration,
    destroyStream,
};

/// One call of the capture service, with what was given to it.
struct CaptureRecord {
    CaptureCall call;
    Seconds at{0};
    /// The stream's number; 0 for calls of the service itself.
    int stream = 0;
    std::optional<ContentFilter> filter = {};
    std::optional<StreamConfiguration> configuration = {};
    std::optional<DesktopWindows> desktopWindows = {};
    std::optional<WindowsListed> windowsListed = {};
};

/// What the capture service of a simulated desktop answers, and what it was asked. Tests plan
/// outcomes and read records here; `SimulatedScreenCapture` is the way in through the seam.
///
/// Thread: main.
class SimulatedCaptureService {
public:
    explicit SimulatedCaptureService(SimulatedDesktop& desktop);
    SimulatedCaptureService(const SimulatedCaptureService&) = delete;
    SimulatedCaptureService& operator=(const SimulatedCaptureService&) = delete;
    ~SimulatedCaptureService() = default;

    // Each of them for every stream.
    SimulatedOperation shareableContent;
    SimulatedOperation captureImage;
    /// Answers at once: succeeds or fails.
    SimulatedOperation addScreenOutput;
    SimulatedOperation startCapture;
    SimulatedOperation stopCapture;
    SimulatedOperation updateContentFilter;
    SimulatedOperation updateConfiguration;

    /// Every call, in order.
    [[nodiscard]] const std::vector<CaptureRecord>& records() const { return m_records; }
    [[nodiscard]] std::vector<CaptureCall> calls() const;
    void clearRecords() { m_records.clear(); }

    /// How often what is there could not be listed.
    [[nodiscard]] int failedListings() const { return m_failedListings; }

    /// Streams that their users have not let go of yet, in the order in which they were made.
    [[nodiscard]] std::vector<std::shared_ptr<SimulatedStream>> streams() const;
    /// The one that was made last; absent when it has been let go of.
    [[nodiscard]] std::shared_ptr<SimulatedStream> latestStream() const;
    [[nodiscard]] std::size_t runningStreamCount() const;
    /// Whether the platform has ended the stream of this number.
    [[nodiscard]] bool hasEndedByItself(int stream) const {
        return m_endedByThemselves.contains(stream);
    }

    /// The connection to the desktop fails: every stream that runs ends by itself.
    void endAllStreams(const PlatformError& error);

    // For the adapters.
    void record(CaptureRecord record);
    void recordFailedListing() { ++m_failedListings; }
    void recordEnd(int stream) { m_endedByThemselves.insert(stream); }
    std::shared_ptr<SimulatedStream>
    makeStream(ContentFilter filter, StreamConfiguration configuration, StopHandler stopped);
    [[nodiscard]] const std::shared_ptr<SerialQueue>& platformQueue() const {
        return m_platformQueue;
    }

private:
    SimulatedDesktop& m_desktop;
    std::vector<CaptureRecord> m_records;
    std::vector<std::weak_ptr<SimulatedStream>> m_streams;
    int m_streamCount = 0;
    int m_failedListings = 0;
    std::set<int> m_endedByThemselves;
    /// A thread of the platform's own, from which stops are reported.
    std::shared_ptr<SerialQueue> m_platformQueue;
};

/// The errors that the desktop itself answers with; the domain is "simulated".
enum class SimulatedError : int {
    notAllowed = 1,
    displayGone = 2,
    windowGone = 3,
    invalidConfiguration = 4,
    notRunning = 5,
};

[[nodiscard]] PlatformError simulatedError(SimulatedError error);

/// Why the desktop cannot capture that now; absent when it can.
[[nodiscard]] std::optional<PlatformError>
findCaptureObstacle(const SimulatedDesktop& desktop, const ContentFilter& filter,
                    const StreamConfiguration& configuration);

} // namespace kestrove
