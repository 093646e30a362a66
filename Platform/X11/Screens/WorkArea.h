#pragma once

#include "Desktop/Geometry.h"
#include "Platform/X11/Screens/MonitorLayout.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace kestrove::x11 {

/// What one panel reserves along the edges of the root, as _NET_WM_STRUT_PARTIAL has it: the depth
/// from the left, right, top and bottom edge, and for each of these where along the edge it begins
/// and ends (the end still belongs to it). Pixels of the root window.
struct Strut {
    std::uint32_t left = 0;
    std::uint32_t right = 0;
    std::uint32_t top = 0;
    std::uint32_t bottom = 0;
    std::array<std::uint32_t, 2> leftSpan{};
    std::array<std::uint32_t, 2> rightSpan{};
    std::array<std::uint32_t, 2> topSpan{};
    std::array<std::uint32_t, 2> bottomSpan{};
};

/// A monitor without what the struts take of it. A strut counts on the monitors inside which its
/// inner edge lies: struts are measured from the edge of the root, so that a panel at the left of
/// the right-hand monitor reserves all of the left-hand one, which it does not mean.
[[nodiscard]] Rect areaWithoutStruts(const Rect& monitor, const Size& root,
                                     std::span<const Strut> struts);

/// What panels leave of each monitor, in the order of the monitors, in pixels of the root window.
///
/// By the window manager's word for each monitor where it gives one (_GTK_WORKAREAS_D<workspace>),
/// else by the struts of the windows; with one monitor, also by _NET_WORKAREA, which is one
/// rectangle for all monitors and therefore means little with several.
[[nodiscard]] std::vector<Rect> readVisibleAreas(Connection& connection,
                                                 std::span<const Monitor> monitors);

} // namespace kestrove::x11
