#pragma once

#include "Desktop/Geometry.h"
#include "Desktop/Identifiers.h"

#include <optional>
#include <span>
#include <vector>

namespace kestrove {

/// One row of the window server's on-screen window list.
struct OverlayWindowSnapshot {
    WindowID windowID = 0;
    ProcessID ownerProcessID = 0;
    /// 0 is where normal windows lie.
    int layer = 0;
    /// 0 (transparent) to 1 (opaque).
    double alpha = 1;
    /// Points, window server coordinates.
    Rect bounds;

    bool operator==(const OverlayWindowSnapshot&) const = default;
};

/// Which window can be seen, by the window list alone. Pure functions, for any thread.
namespace ActiveSourceOverlayVisibility {

/// The window's row when some part of it can be seen; `windows` from front to back. Absent for a
/// window of `currentProcess`, one on another layer than 0, and one without extent or opacity.
///
/// Only opaque windows of other processes on layer 0 hide anything: our own output lies where the
/// user can move it, and what floats above is small or passes.
[[nodiscard]] std::optional<OverlayWindowSnapshot>
visibleTarget(WindowID windowID, ProcessID currentProcess,
              std::span<const OverlayWindowSnapshot> windows);

/// The parts of `rectangle` outside `excluded`, disjoint and never empty: the full-width band on
/// the side of the smaller y, that of the larger y, then what is left and right of the cut. The
/// rectangle alone when the two share no area.
[[nodiscard]] std::vector<Rect> remainingRegions(const Rect& rectangle, const Rect& excluded);

} // namespace ActiveSourceOverlayVisibility
} // namespace kestrove
