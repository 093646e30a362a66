#pragma once

#include "Desktop/ScreenCapture.h"
#include "Platform/X11/Capture/CaptureServices.h"
#include "Platform/X11/Capture/SourceContent.h"
#include "Platform/X11/RawMotion.h"
#include "Platform/X11/Screens/MonitorLayout.h"
#include "Platform/X11/WindowIdentity/Applications.h"

#include <memory>
#include <vector>
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

    /// From now on this window of ours is on no picture of a display, whatever its filter says,
    /// also when it is shown only later. Called before the first stream is made.
    void neverCapture(xcb_window_t window) { m_neverCaptured.push_back(window); }

    Task<std::expected<ShareableContent, PlatformError>>
    shareableContent(DesktopWindows desktopWindows, WindowsListed windowsListed) override;
    std::shared_ptr<CaptureStream> makeStream(ContentFilter filter,
                                              StreamConfiguration configuration,
                                              StopHandler stopped) override;
    Task<std::expected<StillImage, PlatformError>>
    captureImage(ContentFilter filter, StreamConfiguration configuration) override;

private:
    std::shared_ptr<CaptureServices> services();
    std::expected<StillImage, PlatformError> readImage(SourceContent& content,
                                                       const CaptureServices& shared,
                                                       const StreamConfiguration& configuration);

    Connection& m_connection;
    MonitorLayout& m_monitors;
    Applications& m_applications;
    RawMotion& m_motion;
    std::vector<xcb_window_t> m_neverCaptured;
    /// Kept by the streams, so that nothing is followed while nothing is captured.
    std::weak_ptr<CaptureServices> m_services;
};

} // namespace kestrove::x11
