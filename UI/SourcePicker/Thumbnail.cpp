#include "UI/SourcePicker/Thumbnail.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kestrove {

namespace {

constexpr std::int64_t thumbnailWidth = 480; // pixels

ThumbnailRequest request(ContentFilter filter, double width, double height) {
    StreamConfiguration configuration;
    configuration.width = thumbnailWidth;
    configuration.height = static_cast<std::int64_t>(static_cast<double>(thumbnailWidth) *
                                                     (height / std::max(width, 1.0)));
    configuration.showsCursor = false;
    return {std::move(filter), configuration};
}

} // namespace

std::optional<ThumbnailRequest> thumbnailRequest(CaptureSource source,
                                                 const ShareableContent& content,
                                                 const WindowIDSet& excluded) {
    if (source.isWindow()) {
        const auto window =
            std::ranges::find(content.windows, source.identifier(), &CapturableWindow::windowID);
        if (window == content.windows.end())
            return std::nullopt;
        return request(WindowFilter(window->windowID), window->frame.width, window->frame.height);
    }
    const auto display =
        std::ranges::find(content.displays, source.identifier(), &CapturableDisplay::displayID);
    if (display == content.displays.end())
        return std::nullopt;
    std::vector<WindowID> leftOut;
    for (const auto& window : content.windows) {
        if (excluded.contains(window.windowID))
            leftOut.push_back(window.windowID);
    }
    return request(DisplayFilter(display->displayID, std::move(leftOut)), display->width,
                   display->height);
}

} // namespace kestrove
