#include "Core/CaptureEngine/CapturePlan.h"

#include "Core/CaptureEngine/BackingScale.h"
#include "Util/ContentGeometry.h"

#include <algorithm>

namespace kestrove {

namespace {

constexpr Size minimumDisplayPixels{0, 0};
constexpr Size minimumWindowPixels{480, 270};

using Result = std::expected<CaptureContentFilterPlan, EngineError>;

Result planDisplay(DisplayID identifier, const ShareableContent& content,
                   WindowIDSet excludedWindowIDs) {
    const auto display =
        std::ranges::find(content.displays, identifier, &CapturableDisplay::displayID);
    if (display == content.displays.end())
        return std::unexpected(EngineError::displayNotFound);
    std::vector<WindowID> excluded;
    for (const auto& window : content.windows) {
        if (excludedWindowIDs.erase(window.windowID) > 0)
            excluded.push_back(window.windowID);
    }
    excluded.insert(excluded.end(), excludedWindowIDs.begin(), excludedWindowIDs.end());
    return DisplayPlan(*display, std::move(excluded));
}

Result planWindow(WindowID identifier, const ShareableContent& content) {
    const auto window = std::ranges::find(content.windows, identifier, &CapturableWindow::windowID);
    if (window == content.windows.end())
        return std::unexpected(EngineError::windowNotFound);
    return WindowPlan(*window);
}

} // namespace

Result planCapture(const CaptureSource& source, const ShareableContent& content,
                   const WindowIDSet& excludedWindowIDs) {
    return source.isDisplay() ? planDisplay(source.identifier(), content, excludedWindowIDs)
                              : planWindow(source.identifier(), content);
}

ContentFilter contentFilter(const CaptureContentFilterPlan& plan) {
    if (const auto* window = std::get_if<WindowPlan>(&plan))
        return WindowFilter(window->window.windowID);
    const auto& display = std::get<DisplayPlan>(plan);
    return DisplayFilter(display.display.displayID, display.excludedWindows);
}

Size pixelSize(const CaptureContentFilterPlan& plan, const std::vector<Screen>& screens) {
    if (const auto* window = std::get_if<WindowPlan>(&plan)) {
        const auto& frame = window->window.frame;
        return ContentGeometry::scaledPixelSize(
            frame.size(), backingScaleForWindowAt(frame, screens), minimumWindowPixels);
    }
    const auto& display = std::get<DisplayPlan>(plan).display;
    const Size points{static_cast<double>(display.width), static_cast<double>(display.height)};
    return ContentGeometry::scaledPixelSize(
        points, backingScaleForDisplay(display.displayID, screens), minimumDisplayPixels);
}

} // namespace kestrove
