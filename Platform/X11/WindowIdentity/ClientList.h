#pragma once

#include "Platform/X11/Connection.h"

#include <optional>
#include <vector>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// A window that belongs to a program, and the child of the root that holds it.
struct ClientWindow {
    xcb_window_t window = XCB_WINDOW_NONE;
    /// Its window manager's frame, the window itself where nobody has framed it.
    xcb_window_t topLevel = XCB_WINDOW_NONE;
};

/// All windows of programs, front to back as their top levels are stacked.
///
/// With a window manager: those it lists as its clients, minimised ones and those of other
/// workspaces included, and the override-redirect windows that are mapped. Without one: the
/// children of the root that are mapped. Windows without a picture (input only) are left out.
///
/// Absent when the server does not answer. Waits for the server a few times, not once a window.
[[nodiscard]] std::optional<std::vector<ClientWindow>> readClientList(Connection& connection);

/// The window with the focus: as the window manager says, without one the client window in which
/// the keyboard's focus is. None when there is none.
[[nodiscard]] xcb_window_t readActiveWindow(Connection& connection);

} // namespace kestrove::x11
