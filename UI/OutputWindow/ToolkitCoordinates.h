#pragma once

#include "Desktop/Geometry.h"

#include <span>

namespace kestrove {

/// Between screen coordinates (origin at the bottom left of the main screen, y upwards) and those
/// of the toolkit (origin anywhere, y downwards), in both of which the same screens are known.
///
/// Neither list needs an order, nor the toolkit's a main screen: which screen is the main one is
/// for the first list alone to say, and the two sides may disagree on it. Without screens on one of
/// the sides, both have their origin at the same place.
class ToolkitCoordinates {
public:
    ToolkitCoordinates(std::span<const Rect> screenFrames, std::span<const Rect> toolkitFrames);

    [[nodiscard]] Rect toScreen(const Rect& toolkit) const;
    [[nodiscard]] Rect toToolkit(const Rect& screen) const;

private:
    /// The origin of screen coordinates in those of the toolkit.
    Point m_origin;
};

} // namespace kestrove
