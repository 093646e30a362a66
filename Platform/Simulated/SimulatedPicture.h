#pragma once

#include "Desktop/ScreenCapture.h"
#include "Platform/Simulated/SimulatedWorld.h"

#include <optional>
#include <vector>

namespace kestrove {

class SimulatedDesktop;

enum class CursorShown { no, yes };

/// What a filter shows at one moment. A value: two pictures are equal when they look alike.
///
/// Coordinates: points from the top left of what is captured, y down.
struct SimulatedPicture {
    struct Tile {
        WindowID windowID = 0;
        Rect frame;
        double alpha = 1;
        SimulatedColor color;

        bool operator==(const Tile&) const = default;
    };

    Size size;
    SimulatedColor background;
    /// Front to back; windows that others cover whole are left out.
    std::vector<Tile> tiles;
    std::optional<Point> cursor;

    [[nodiscard]] bool shows(WindowID window) const;
    [[nodiscard]] SimulatedColor colorAt(Point point) const;

    bool operator==(const SimulatedPicture&) const = default;
};

/// The cursor is a square of this size, white, its top left corner at the pointer.
constexpr double simulatedCursorSize = 8;

/// Absent when the display or window of the filter does not exist.
[[nodiscard]] std::optional<SimulatedPicture>
takePicture(const SimulatedDesktop& desktop, const ContentFilter& filter, CursorShown cursor);

/// The picture fitted into `width` by `height` pixels, centred, the rest black.
[[nodiscard]] StillImage draw(const SimulatedPicture& picture, int width, int height);

/// What is seen at a pixel of the picture fitted into `width` by `height` pixels.
[[nodiscard]] SimulatedColor colorInFrame(const SimulatedPicture& picture, Size pixels,
                                          Point pixel);

} // namespace kestrove
