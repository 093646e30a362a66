#pragma once

#include "Async/Turns.h"
#include "Desktop/ScreenCapture.h"
#include "Platform/X11/Capture/CaptureServices.h"
#include "Platform/X11/Capture/SourceContent.h"
#include "Platform/X11/Capture/WindowsNeverCaptured.h"
#include "Platform/X11/RawMotion.h"
#include "Platform/X11/Screens/MonitorLayout.h"
#include "Platform/X11/WindowIdentity/Applications.h"

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// The capture service of an X desktop. After the connection was lost, the next question for
/// shareable content tries to get a new one.
///
/// Thread: main. Lifetime: outlives its streams; everything given outlives it.
class X11ScreenCapture final : public ScreenCapture {
public:
    X11ScreenCapture(Connection& connection, MonitorLayout& monitors, Applications& applications,
                     RawMotion& motion);

    /// Windows that are on no picture of a display, whatever its filter says, from now on.
    [[nodiscard]] WindowsNeverCaptured& neverCaptured() { return m_neverCaptured; }

    /// Follows the window stack of the captures, of the next ones on: `follow` is called with it
    /// whenever there is one, and what it returns ends before it.
    void followStack(std::function<Subscription(WindowStack&)> follow) {
        m_followStack = std::move(follow);
    }

    Task<std::expected<ShareableContent, PlatformError>>
    shareableContent(DesktopWindows desktopWindows, WindowsListed windowsListed) override;
    std::shared_ptr<CaptureStream> makeStream(ContentFilter filter,
                                              StreamConfiguration configuration,
                                              StopHandler stopped) override;
    Task<std::expected<StillImage, PlatformError>>
    captureImage(ContentFilter filter, StreamConfiguration configuration) override;

private:
    std::shared_ptr<CaptureServices> services();

    Connection& m_connection;
    MonitorLayout& m_monitors;
    Applications& m_applications;
    RawMotion& m_motion;
    WindowsNeverCaptured m_neverCaptured;
    std::function<Subscription(WindowStack&)> m_followStack;
    /// Kept by the streams, so that nothing is followed while nothing is captured.
    std::weak_ptr<CaptureServices> m_services;
    /// So many still images are made at the same time: each has the server keep the whole content
    /// of its windows.
    std::array<Turns, 4> m_imageLanes;
    std::size_t m_nextImageLane = 0;
};

} // namespace kestrove::x11
