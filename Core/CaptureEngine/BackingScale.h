#pragma once

#include "Desktop/Geometry.h"
#include "Desktop/Identifiers.h"
#include "Desktop/Screens.h"

#include <vector>

namespace kestrove {

/// Pixels a point of the screen that shows the display: the first one that has its identifier, else
/// the main screen, else 2.
[[nodiscard]] double backingScaleForDisplay(DisplayID display, const std::vector<Screen>& screens);

/// Pixels a point of the screen at the centre of a window; 2 when no screen is there.
///
/// `frame` is in points, window server coordinates, and is compared with the screens' frames as it
/// stands, without turning the y axis around. With one screen, or screens of one height, that finds
/// the same screen; where it does not, the capture is only scaled otherwise.
[[nodiscard]] double backingScaleForWindowAt(const Rect& frame, const std::vector<Screen>& screens);

} // namespace kestrove
