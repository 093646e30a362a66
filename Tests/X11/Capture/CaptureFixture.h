#pragma once

#include "Async/TaskScope.h"
#include "Platform/Linux/DesktopEntries.h"
#include "Platform/X11/Capture/X11DisplayLayer.h"
#include "Platform/X11/Capture/X11ScreenCapture.h"
#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/PollMainLoop/PollMainLoop.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/XDesktop.h"

#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace kestrove::test {

/// A capture service and a display layer on an X desktop of the test's own. The layer lies in a
/// window that stands for the output window; what a test compares is read by the test's own
/// connection.
class CaptureDesktop {
public:
    explicit CaptureDesktop(const XDesktop::Options& options = {});

    [[nodiscard]] static StreamConfiguration configurationAt(int framesPerSecond,
                                                             bool showsCursor = false);

    /// Starts a stream whose samples go to the layer. Fails the test when it does not start.
    void start(ContentFilter filter, StreamConfiguration configuration);
    void start(ContentFilter filter) { start(std::move(filter), configurationAt(60)); }
    void retarget(ContentFilter filter);
    void reconfigure(StreamConfiguration configuration);
    void stop();
    [[nodiscard]] std::expected<void, PlatformError> outcomeOfStarting(CaptureStream& other);

    /// The output window without a window manager, at this place of the root.
    void openOutput(const xcb_rectangle_t& geometry);
    void moveOutput(int x, int y);
    void resizeOutput(int width, int height);

    [[nodiscard]] DisplayFilter display(std::size_t index, std::vector<WindowID> excluded = {});

    /// Spins until the output's content equals `expected`, or the time limit; then compares for
    /// good.
    [[nodiscard]] testing::AssertionResult outputBecomes(const PixelImage& expected,
                                                         std::string_view name, int tolerance = 0);
    /// The same with what the screen shows at the moment.
    [[nodiscard]] testing::AssertionResult outputBecomesScreen(const xcb_rectangle_t& part,
                                                               std::string_view name);
    /// Spins until the screen, which a compositor may still paint, stays as it is.
    void settleScreen(const xcb_rectangle_t& part);
    /// Spins until the server has done what we asked of it, and all is heard and acted on that it
    /// has to tell.
    void hearAll();
    /// The same without asking anything ourselves.
    void listen();
    /// Spins until nothing more comes: all is heard, and nothing of ours waits for its time.
    void settle();
    [[nodiscard]] PixelImage output() const;
    [[nodiscard]] PixelImage screen(const xcb_rectangle_t& part) const;
    [[nodiscard]] xcb_window_t outputWindow() const { return m_output->id(); }

    XDesktop desktop;
    PollMainLoop loop;
    std::unique_ptr<x11::Connection> connection;
    std::unique_ptr<x11::MonitorLayout> monitors;
    x11::Applications applications;
    std::unique_ptr<x11::RawMotion> motion;
    std::unique_ptr<x11::X11ScreenCapture> capture;
    std::unique_ptr<x11::X11DisplayLayer> layer;
    std::shared_ptr<CaptureStream> stream;
    int frames = 0;
    /// How many of them had come when the stream had started, or was reconfigured, the last time.
    int framesWhenAnswered = 0;
    /// How many requests our connection has sent.
    [[nodiscard]] std::uint32_t requestCount() const;
    std::vector<PlatformError> stops;

private:
    Task<void> startStream(CaptureStream& started);
    Task<void> retargetStream(ContentFilter filter);
    Task<void> reconfigureStream(StreamConfiguration configuration);
    Task<void> stopStream();
    void run(Task<void> task);

    struct Disconnect {
        void operator()(xcb_connection_t* open) const { xcb_disconnect(open); }
    };

    std::unique_ptr<TestWindow> m_output;
    /// Asks when we shall not.
    std::unique_ptr<xcb_connection_t, Disconnect> m_listener;
    std::expected<void, PlatformError> m_outcome;
    TaskScope m_tasks;
};

} // namespace kestrove::test
