#pragma once

#include "Desktop/Geometry.h"
#include "Platform/X11/Screens/MonitorLayout.h"

#include <span>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// From pixels of the root window (origin at its top left, y downwards) to the desktop's coordinate
/// systems, whose origins lie at the main screen.
///
/// A point is a pixel here: X has one coordinate space for all monitors, without a scale of their
/// own, so the backing scale factor is always 1.
class Coordinates {
public:
    /// Without any monitor, both origins lie at the root's top left.
    explicit Coordinates(std::span<const Monitor> monitors);

    [[nodiscard]] Rect windowServerRect(const Rect& root) const;
    [[nodiscard]] Rect screenRect(const Rect& root) const;
    /// Back from screen coordinates.
    [[nodiscard]] Rect rootRect(const Rect& screen) const;
    /// Where the pixel is, not its upper edge: the topmost row still lies inside the screen, whose
    /// upper edge does not belong to it.
    [[nodiscard]] Point screenPoint(int rootX, int rootY) const;

private:
    double m_mainLeft = 0;
    double m_mainTop = 0;
    double m_mainBottom = 0;
};

[[nodiscard]] Rect toRect(const xcb_rectangle_t& rectangle);

} // namespace kestrove::x11
