#pragma once

#include "Platform/X11/Connection.h"

#include <cstdint>
#include <span>

namespace kestrove::x11 {

/// Layers, as windows are reported to lie on. Only their being 0 or not decides anything; the
/// numbers rise in the order in which such windows usually lie above one another.
///
/// | layer | windows                                                                        |
/// |-------|--------------------------------------------------------------------------------|
/// |    -1 | the desktop itself: _DESKTOP                                                   |
/// |     0 | managed windows: _NORMAL, _DIALOG, no type or none that is known               |
/// |     3 | what floats beside a window: _UTILITY, _TOOLBAR, _MENU (torn off), _SPLASH     |
/// |    20 | panels and docks: _DOCK                                                        |
/// |    25 | _NOTIFICATION                                                                  |
/// |   101 | _DROPDOWN_MENU, _POPUP_MENU, _COMBO, and override-redirect windows of layer 0  |
/// |   200 | _TOOLTIP                                                                       |
/// |   500 | what is being dragged: _DND                                                    |
namespace layer {
constexpr int desktop = -1;
constexpr int normal = 0;
constexpr int floating = 3;
constexpr int dock = 20;
constexpr int notification = 25;
constexpr int popUp = 101;
constexpr int toolTip = 200;
constexpr int drag = 500;
} // namespace layer

enum class Management { managed, overrideRedirect };

/// By the first of the window's types (_NET_WM_WINDOW_TYPE, in its order) that is in the table.
[[nodiscard]] int windowLayer(Connection& connection, std::span<const std::uint32_t> types,
                              Management management);

} // namespace kestrove::x11
