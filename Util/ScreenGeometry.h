#pragma once

#include "Desktop/Geometry.h"
#include "Desktop/Identifiers.h"
#include "Desktop/Pointer.h"
#include "Desktop/Screens.h"

#include <optional>
#include <vector>

/// From points and screens to display identifiers. Stateless.
///
/// Points and frames are in points, screen coordinates. Thread: main for what asks the desktop, any
/// for the rest.
namespace kestrove::ScreenGeometry {

/// The first screen, in list order, whose frame contains the point: its smaller edges belong to a
/// screen, its larger ones do not, so that neighbours never both contain it.
[[nodiscard]] std::optional<Screen> screen(Point at, const std::vector<Screen>& in);

/// The screen that the desktop calls the main one.
[[nodiscard]] std::optional<Screen> mainScreen(const std::vector<Screen>& in);

/// Absent when the desktop has no number for the screen.
[[nodiscard]] std::optional<DisplayID> displayID(const Screen& of);

/// The display under the pointer; the main one when the pointer is on no screen, or on one without
/// an identifier. Absent when the main screen does not help either.
[[nodiscard]] std::optional<DisplayID> displayIDUnderMouse(Pointer& pointer, Screens& screens);

} // namespace kestrove::ScreenGeometry
