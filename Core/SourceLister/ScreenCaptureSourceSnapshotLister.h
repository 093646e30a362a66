#pragma once

#include "Core/Collaborators/SourceDiscovery.h"
#include "Desktop/Application.h"
#include "Desktop/ScreenCapture.h"
#include "Desktop/Screens.h"
#include "Desktop/SystemLog.h"

namespace kestrove {

/// Takes snapshots of the real desktop: all displays, and all windows but those of the desktop
/// itself, on screen or not. Fails, with the platform's error unchanged, when the platform refuses
/// (for want of the permission, for instance).
///
/// Thread: main. Lifetime: what it is given outlives it, and it outlives its tasks.
class ScreenCaptureSourceSnapshotLister final : public SourceSnapshotListing {
public:
    ScreenCaptureSourceSnapshotLister(ScreenCapture& capture, Screens& screens,
                                      const Application& application, SystemLog& log);

    Task<std::expected<SourceLister::Snapshot, PlatformError>>
    fetch(WindowIDSet excludingWindowIDs) override;

private:
    ScreenCapture& m_capture;
    Screens& m_screens;
    const Application& m_application;
    SystemLog& m_log;
};

} // namespace kestrove
