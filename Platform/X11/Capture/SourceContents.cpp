#include "Platform/X11/Capture/SourceContents.h"

#include "Platform/X11/Capture/DisplayContent.h"
#include "Platform/X11/Capture/WindowContent.h"

#include <utility>

namespace kestrove::x11 {

std::expected<std::unique_ptr<SourceContent>, PlatformError>
openSourceContent(Connection& connection, const MonitorLayout& monitors, CaptureServices& services,
                  const ContentFilter& filter) {
    if (const auto* const window = std::get_if<WindowFilter>(&filter)) {
        auto content = WindowContent::open(connection, services, window->windowID);
        if (!content)
            return std::unexpected(std::move(content.error()));
        return std::move(*content);
    }
    const auto& display = std::get<DisplayFilter>(filter);
    const auto* const monitor = monitors.find(display.displayID);
    if (!monitor)
        return std::unexpected(displayGone());
    return std::make_unique<DisplayContent>(connection, services, monitor->rectangle,
                                            display.excludedWindows);
}

PlatformError displayGone() {
    return {"X11", XCB_VALUE, "the display has gone"};
}

PlatformError noMemory() {
    return {"X11", XCB_ALLOC, "the X server has no memory for the picture of the source"};
}

} // namespace kestrove::x11
