#include "UI/OutputWindow/ToolkitCoordinates.h"

#include <algorithm>

namespace kestrove {

ToolkitCoordinates::ToolkitCoordinates(std::span<const Rect> screenFrames,
                                       std::span<const Rect> toolkitFrames) {
    if (screenFrames.empty() || toolkitFrames.empty())
        return;
    // The desktop's left and upper edges are the same place on both sides.
    const auto left = [](std::span<const Rect> frames) {
        return std::ranges::min(frames, {}, &Rect::minX).minX();
    };
    const double screenTop = std::ranges::max(screenFrames, {}, &Rect::maxY).maxY();
    const double toolkitTop = std::ranges::min(toolkitFrames, {}, &Rect::minY).minY();
    m_origin = {left(toolkitFrames) - left(screenFrames), toolkitTop + screenTop};
}

Rect ToolkitCoordinates::toScreen(const Rect& toolkit) const {
    return {toolkit.x - m_origin.x, m_origin.y - toolkit.maxY(), toolkit.width, toolkit.height};
}

Rect ToolkitCoordinates::toToolkit(const Rect& screen) const {
    return {screen.x + m_origin.x, m_origin.y - screen.maxY(), screen.width, screen.height};
}

} // namespace kestrove
