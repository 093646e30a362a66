#pragma once

#include "Async/SerialQueue.h"
#include "Async/Task.h"
#include "Desktop/Geometry.h"
#include "Desktop/Identifiers.h"
#include "Desktop/PlatformError.h"
#include "Desktop/SampleBuffer.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kestrove {

/// The application that owns a capturable window.
struct CapturableApplication {
    std::string bundleIdentifier;
    std::string applicationName;
    /// 0 when the desktop does not say (a window of another machine, for instance).
    ProcessID processID = 0;

    bool operator==(const CapturableApplication&) const = default;
};

struct CapturableDisplay {
    DisplayID displayID = 0;
    /// Points.
    int width = 0;
    int height = 0;

    bool operator==(const CapturableDisplay&) const = default;
};

struct CapturableWindow {
    WindowID windowID = 0;
    /// 0: a normal application window. Panels, menus and the like lie on others.
    int windowLayer = 0;
    std::optional<std::string> title;
    /// Points, window server coordinates.
    Rect frame;
    bool isOnScreen = false;
    std::optional<CapturableApplication> owningApplication;

    bool operator==(const CapturableWindow&) const = default;
};

/// What can be captured at one moment.
struct ShareableContent {
    std::vector<CapturableDisplay> displays;
    std::vector<CapturableWindow> windows;
};

enum class DesktopWindows { included, excluded };
enum class WindowsListed { all, onScreenOnly };

/// A whole display without some windows: where those lie, what is beneath them is captured. They
/// need not be listed as shareable, nor be on the screen yet.
struct DisplayFilter {
    DisplayFilter(DisplayID capturedDisplay, std::vector<WindowID> windowsLeftOut)
        : displayID(capturedDisplay)
        , excludedWindows(std::move(windowsLeftOut)) {}

    DisplayID displayID;
    std::vector<WindowID> excludedWindows;

    bool operator==(const DisplayFilter&) const = default;
};

/// One window by itself, wherever it lies and whatever covers it.
struct WindowFilter {
    explicit WindowFilter(WindowID capturedWindow)
        : windowID(capturedWindow) {}

    WindowID windowID;

    bool operator==(const WindowFilter&) const = default;
};

using ContentFilter = std::variant<DisplayFilter, WindowFilter>;

/// A media time: `value` / `timescale` seconds.
struct MediaTime {
    std::int64_t value = 0;
    std::int32_t timescale = 1;

    bool operator==(const MediaTime&) const = default;
};

enum class PixelFormat { bgra32 };
enum class ColorSpace { sRGB };

struct StreamConfiguration {
    StreamConfiguration() = default;

    /// Frames come only when something changed, and in the long run, to a hundredth, no more often
    /// than this; one that was late may be followed by some that are up to 2 ms closer. Beside them
    /// come the whole frame after a start or an update, at once, and what a frame may have lacked
    /// of a change.
    MediaTime minimumFrameInterval;
    PixelFormat pixelFormat = PixelFormat::bgra32;
    bool showsCursor = false;
    /// How many frames may be on their way at once. What would be one too many is merged into the
    /// next.
    int queueDepth = 3;
    ColorSpace colorSpaceName = ColorSpace::sRGB;
    /// Pixels of a delivered frame. The source is fitted into it with its aspect ratio kept.
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// Any number of the caller's own. Every sample carries that of the configuration it was made
    /// under, however late it arrives: by it alone can a caller that updates first the filter and
    /// then the configuration tell a frame of its new target from one of the old.
    std::uint64_t generation = 0;

    bool operator==(const StreamConfiguration&) const = default;
};

/// Called on the queue given to `addScreenOutput`.
using SampleHandler = std::function<void(SampleBufferPointer)>;

/// Called at most once a stream, from any thread, when the platform ends a started stream by
/// itself: its display or window has gone, or the connection has failed. Never called after a stop
/// that the user of the stream asked for.
using StopHandler = std::function<void(PlatformError)>;

/// A live capture of one filter. Created stopped; it runs once: after its start has failed, after
/// a stop and after the stop report it is only good for being destroyed.
///
/// Thread: main. An operation begins when its task is first awaited; the task may be dropped at any
/// time, the operation then still takes effect.
/// Lifetime: destroying a stream that starts or runs stops it, without a stop report. After a stop
/// was asked for, or after the stop report, no further sample is handed to the queue; one that was
/// handed to it before still reaches the handler.
class CaptureStream {
public:
    CaptureStream() = default;
    CaptureStream(const CaptureStream&) = delete;
    CaptureStream& operator=(const CaptureStream&) = delete;
    virtual ~CaptureStream() = default;

    /// Before `startCapture`, at most once. `queue` is kept alive by the stream.
    virtual std::expected<void, PlatformError> addScreenOutput(std::shared_ptr<SerialQueue> queue,
                                                               SampleHandler handler) = 0;

    /// Once, after `addScreenOutput`. Fails when the display or window of the filter does not
    /// exist. The first frame, a whole one, follows without waiting for a change.
    [[nodiscard]] virtual Task<std::expected<void, PlatformError>> startCapture() = 0;
    /// After `startCapture` was asked for. Always answered, also for a stream that has ended by
    /// itself meanwhile; whatever the answer, the stream is stopped.
    [[nodiscard]] virtual Task<std::expected<void, PlatformError>> stopCapture() = 0;

    /// Retarget a running stream; both fail for one that does not run any more. A whole frame
    /// follows each of them that succeeds, also when the new value equals the old; it may arrive
    /// before the task goes on. When one fails, the stream goes on with what it had. A sample is
    /// captured through the newest filter that was accepted when its configuration was, or through
    /// a later one.
    [[nodiscard]] virtual Task<std::expected<void, PlatformError>>
    updateContentFilter(ContentFilter filter) = 0;
    [[nodiscard]] virtual Task<std::expected<void, PlatformError>>
    updateConfiguration(StreamConfiguration configuration) = 0;
};

/// One picture in memory: 32-bit BGRA, rows from top to bottom without gaps.
struct StillImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;
};

/// The desktop's screen-capture service.
///
/// Thread: main.
class ScreenCapture {
public:
    ScreenCapture() = default;
    ScreenCapture(const ScreenCapture&) = delete;
    ScreenCapture& operator=(const ScreenCapture&) = delete;
    virtual ~ScreenCapture() = default;

    /// Displays in the desktop's own order, windows front to back. Fails when the desktop refuses.
    [[nodiscard]] virtual Task<std::expected<ShareableContent, PlatformError>>
    shareableContent(DesktopWindows desktopWindows, WindowsListed windowsListed) = 0;

    [[nodiscard]] virtual std::shared_ptr<CaptureStream>
    makeStream(ContentFilter filter, StreamConfiguration configuration, StopHandler stopped) = 0;

    /// One picture of what the filter shows now, fitted into the configuration's size, the rest
    /// black. Fails when the display or window does not exist or the size is not at least 1 by 1.
    [[nodiscard]] virtual Task<std::expected<StillImage, PlatformError>>
    captureImage(ContentFilter filter, StreamConfiguration configuration) = 0;
};

} // namespace kestrove
