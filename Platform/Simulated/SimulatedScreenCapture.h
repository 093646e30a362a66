#pragma once

#include "Desktop/ScreenCapture.h"

namespace kestrove {

class SimulatedDesktop;

/// Screen capture of a simulated desktop. Outcomes and records are in `SimulatedCaptureService`.
class SimulatedScreenCapture final : public ScreenCapture {
public:
    explicit SimulatedScreenCapture(SimulatedDesktop& desktop)
        : m_desktop(desktop) {}

    Task<std::expected<ShareableContent, PlatformError>>
    shareableContent(DesktopWindows desktopWindows, WindowsListed windowsListed) override;
    std::shared_ptr<CaptureStream> makeStream(ContentFilter filter,
                                              StreamConfiguration configuration,
                                              StopHandler stopped) override;
    Task<std::expected<StillImage, PlatformError>>
    captureImage(ContentFilter filter, StreamConfiguration configuration) override;

private:
    SimulatedDesktop& m_desktop;
};

} // namespace kestrove
