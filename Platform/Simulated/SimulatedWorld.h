#pragma once

#include "Desktop/Geometry.h"
#include "Desktop/Identifiers.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>

namespace kestrove {

// What a simulated desktop consists of. All of these are plain values that tests fill in.

/// 0 to 255 each.
struct SimulatedColor {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const SimulatedColor&) const = default;
};

struct SimulatedDisplay {
    DisplayID displayID = 0;
    /// Points, screen coordinates. That of the main display, the first one, starts at 0, 0.
    Rect frame = {};
    /// Points, screen coordinates; the whole frame when absent.
    std::optional<Rect> visibleFrame = {};
    /// Pixels a point.
    double scale = 1;
    std::string name = {};
    /// Whether the screen list gives this display's identifier.
    bool hasScreenNumber = true;
    /// What is seen where no window lies.
    SimulatedColor background{40, 44, 52};

    bool operator==(const SimulatedDisplay&) const = default;
};

/// A field that a desktop may leave out of its window list.
enum class SimulatedWindowField { number, owner, layer, alpha, bounds };

struct SimulatedWindow {
    /// 0 lets the desktop choose one.
    WindowID windowID = 0;
    /// 0: nobody's.
    ProcessID processID = 0;
    int layer = 0;
    /// 0 (transparent) to 1 (opaque).
    double alpha = 1;
    std::optional<std::string> title = {};
    /// Points, window server coordinates.
    Rect frame = {};
    bool isOnScreen = true;
    /// The wallpaper, the desktop's icons.
    bool isDesktopElement = false;
    /// The window is painted with it all over.
    SimulatedColor color{200, 200, 200};
    std::set<SimulatedWindowField> leftOut = {};

    bool operator==(const SimulatedWindow&) const = default;
};

struct SimulatedApplicationProcess {
    /// 0 lets the desktop choose one.
    ProcessID processID = 0;
    std::optional<std::string> bundleIdentifier = {};
    std::string name = {};

    bool operator==(const SimulatedApplicationProcess&) const = default;
};

} // namespace kestrove
