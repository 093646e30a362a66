#include "Platform/X11/Screens/Coordinates.h"

#include <algorithm>

namespace kestrove::x11 {

Coordinates::Coordinates(std::span<const Monitor> monitors) {
    const auto main = std::ranges::find_if(monitors, &Monitor::isMain);
    if (main == monitors.end())
        return;
    m_mainLeft = main->rectangle.x;
    m_mainTop = main->rectangle.y;
    m_mainBottom = m_mainTop + main->rectangle.height;
}

Rect Coordinates::windowServerRect(const Rect& root) const {
    return {root.x - m_mainLeft, root.y - m_mainTop, root.width, root.height};
}

Rect Coordinates::screenRect(const Rect& root) const {
    return {root.x - m_mainLeft, m_mainBottom - root.maxY(), root.width, root.height};
}

Rect Coordinates::rootRect(const Rect& screen) const {
    return {screen.x + m_mainLeft, m_mainBottom - screen.maxY(), screen.width, screen.height};
}

Point Coordinates::screenPoint(int rootX, int rootY) const {
    return {rootX - m_mainLeft, m_mainBottom - rootY - 1};
}

Rect toRect(const xcb_rectangle_t& rectangle) {
    return {static_cast<double>(rectangle.x), static_cast<double>(rectangle.y),
            static_cast<double>(rectangle.width), static_cast<double>(rectangle.height)};
}

} // namespace kestrove::x11
