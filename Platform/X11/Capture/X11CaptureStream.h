#pragma once

#include "Async/TaskScope.h"
#include "Desktop/ScreenCapture.h"
#include "Platform/X11/Capture/CaptureServices.h"
#include "Platform/X11/Capture/FramePacer.h"
#include "Platform/X11/Capture/FrameSample.h"
#include "Platform/X11/Capture/SourceContent.h"
#include "Platform/X11/Screens/MonitorLayout.h"

#include <memory>
#include <optional>

namespace kestrove::x11 {

/// A capture stream: gathers what has changed and hands it on as a frame, never more often than the
/// configuration allows and never without a change. The frame is painted, with the cursor, when it
/// is shown: into the stream's surface, or straight to where it is shown.
class X11CaptureStream final : public CaptureStream, private FramePainter {
public:
    X11CaptureStream(Connection& connection, MonitorLayout& monitors,
                     std::shared_ptr<CaptureServices> services, ContentFilter filter,
                     StreamConfiguration configuration, StopHandler stopped);
    ~X11CaptureStream() override;

    std::expected<void, PlatformError> addScreenOutput(std::shared_ptr<SerialQueue> queue,
                                                       SampleHandler handler) override;
    Task<std::expected<void, PlatformError>> startCapture() override;
    Task<std::expected<void, PlatformError>> stopCapture() override;
    Task<std::expected<void, PlatformError>> updateContentFilter(ContentFilter filter) override;
    Task<std::expected<void, PlatformError>>
    updateConfiguration(StreamConfiguration configuration) override;

private:
    using Outcome = std::expected<void, PlatformError>;
    /// How many samples are on their way; outlives the stream with the last of them.
    struct Room {
        int samplesOnTheirWay = 0;
        std::function<void()> onReleased;
    };
    /// What of the cursor is on the frame, and where.
    struct PaintedCursor {
        std::shared_ptr<const CursorImage> image;
        int x = 0;
        int y = 0;
        [[nodiscard]] Region region() const;
        bool operator==(const PaintedCursor&) const = default;
    };

    Outcome openContent(ContentFilter filter);
    void followContent();
    void followCursor();
    void followDisplay();
    void requestFrame();
    /// Before whoever asked for the new target goes on: the marks that then follow the source have
    /// the server copy whole windows, for longer than an interval.
    void makeWholeFrame();
    void makeFrame();
    [[nodiscard]] std::optional<PaintedCursor> currentCursor();
    Region paintedAtOnce(const Region& region) const override;
    void paint(const PaintTarget& target, const Region& region) override;
    void letGoOfSurface();
    void letGoOfFormerContent();
    void handOn(Region damage);
    void end();
    void fail(PlatformError error);

    Connection& m_connection;
    MonitorLayout& m_monitors;
    std::shared_ptr<CaptureServices> m_services;
    ContentFilter m_filter;
    StreamConfiguration m_configuration;
    StopHandler m_stopped;
    std::shared_ptr<SerialQueue> m_queue;
    SampleHandler m_handler;
    bool m_isRunning = false;

    std::unique_ptr<SourceContent> m_content;
    /// Until the first frame of the present one was made.
    std::unique_ptr<SourceContent> m_formerContent;
    std::shared_ptr<FrameSurface> m_surface;
    std::optional<PaintedCursor> m_cursor;
    bool m_isWholeFrameDue = true;
    std::uint64_t m_number = 0;
    std::shared_ptr<Room> m_room = std::make_shared<Room>();
    bool m_isWaitingForRoom = false;
    FramePacer m_pacer;
    Timer m_nextFrame;
    /// As soon as everybody has acted on the server's events.
    bool m_isFrameDue = false;

    Subscription m_aboutToChange;
    Subscription m_changed;
    Subscription m_gone;
    Subscription m_refused;
    Subscription m_cursorChanged;
    Subscription m_monitorsChanged;
    Subscription m_lost;
    Subscription m_acted;
    TaskScope m_tasks;
};

} // namespace kestrove::x11
