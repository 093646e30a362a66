#include "Core/SourceLister/ScreenCaptureSourceSnapshotLister.h"

#include "Core/SourceLister/SourceLister.h"

#include <utility>

namespace kestrove {

ScreenCaptureSourceSnapshotLister::ScreenCaptureSourceSnapshotLister(ScreenCapture& capture,
                                                                     Screens& screens,
                                                                     const Application& application,
                                                                     SystemLog& log)
    : m_capture(capture)
    , m_screens(screens)
    , m_application(application)
    , m_log(log) {}

Task<std::expected<SourceLister::Snapshot, PlatformError>>
ScreenCaptureSourceSnapshotLister::fetch(WindowIDSet excludingWindowIDs) {
    auto content =
        co_await m_capture.shareableContent(DesktopWindows::excluded, WindowsListed::all);
    if (!content)
        co_return std::unexpected(std::move(content.error()));
    // Screens are read after the wait: names belong to the displays of the content.
    const SourceLister::Context context{m_screens.screens(), m_application.bundleIdentifier(),
                                        m_log};
    co_return SourceLister::makeSnapshot(*content, excludingWindowIDs, context);
}

} // namespace kestrove
