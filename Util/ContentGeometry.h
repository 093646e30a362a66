#pragma once

#include "Desktop/Geometry.h"

#include <cstddef>
#include <optional>
#include <vector>

/// The rectangle arithmetic behind every size and place of the output side: pixel sizes of a
/// capture, a window's place on a screen, and a place outside every screen.
///
/// Stateless. Rectangles are in points, screen coordinates; nothing but `offscreenWindowFrame`
/// depends on which way y grows. A result is absent rather than degenerate. A length that is not a
/// number counts as not greater than 0. Thread: any.
namespace kestrove::ContentGeometry {

/// The pixels that `point` (a size in points) covers at `scale`, each axis rounded up to a whole
/// number. Both axes are enlarged by one factor until neither is below `minimum`, so that the
/// aspect ratio stays and one axis may exceed the minimum. `minimum` itself when a length or the
/// scale is not greater than 0.
[[nodiscard]] Size scaledPixelSize(Size point, double scale, Size minimum);

/// `frame` shrunk by one factor, never enlarged, until it fits into `bounds`, and pushed inside.
/// Absent when a length of either is not greater than 0.
[[nodiscard]] std::optional<Rect> clampedWindowFrame(const Rect& frame, const Rect& bounds);

/// Where the fitted `frame` lies in the room that it leaves free: 0 is the low edge of `bounds`, 1
/// the high one. A window that fills an axis counts as centred on it (0.5).
[[nodiscard]] std::optional<Point> relativePlacement(const Rect& frame, const Rect& bounds);

/// The frame of a window of `size`, fitted into `bounds`, at a relative placement; coordinates
/// outside 0 to 1 are clamped. Absent when a coordinate is not finite. Undoes `relativePlacement`.
[[nodiscard]] std::optional<Rect> positionedWindowFrame(Size size, Point relativePlacement,
                                                        const Rect& bounds);

/// The rectangle that shares the greatest area with `rectangle`; the first one among equals. Absent
/// when none shares more than an edge.
[[nodiscard]] std::optional<std::size_t> bestIntersectionIndex(const Rect& rectangle,
                                                               const std::vector<Rect>& rectangles);

/// A frame of `size` below and to the left of everything that `screenFrames` cover. Absent when
/// there is no screen or a length is not greater than 0.
[[nodiscard]] std::optional<Rect> offscreenWindowFrame(Size size,
                                                       const std::vector<Rect>& screenFrames);

} // namespace kestrove::ContentGeometry
