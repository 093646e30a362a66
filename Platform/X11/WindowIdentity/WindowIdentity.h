#pragma once

#include "Desktop/Geometry.h"
#include "Desktop/Identifiers.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/WindowIdentity/ClientList.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kestrove::x11 {

/// What one window says of itself, and its window manager of it.
struct WindowIdentity {
    WindowID windowID = 0;
    /// The child of the root that holds it; the same window where nobody has framed it.
    xcb_window_t topLevel = XCB_WINDOW_NONE;
    /// _NET_WM_NAME, else WM_NAME; valid UTF-8.
    std::optional<std::string> title;
    /// _NET_WM_PID, but only of a window whose WM_CLIENT_MACHINE is this machine: elsewhere the
    /// number means another process or none. Without it, the process that the server knows at the
    /// other end of the connection (`ClientProcesses`): a frame is its window manager's, then.
    std::optional<ProcessID> processID;
    /// _GTK_APPLICATION_ID, else the stem of the desktop file in _BAMF_DESKTOP_FILE or
    /// _KDE_NET_WM_DESKTOP_FILE, else the class in WM_CLASS. Windows of one process may differ in
    /// it: `Applications` says what counts for the process.
    std::optional<std::string> bundleIdentifier;
    /// The class in WM_CLASS.
    std::optional<std::string> applicationClass;
    /// See WindowLayer.h.
    int layer = 0;
    /// 0 (transparent) to 1: _NET_WM_WINDOW_OPACITY of the window or of its frame, 1 without.
    double alpha = 1;
    /// Without its border and without the shadow that it draws itself (_GTK_FRAME_EXTENTS). Pixels
    /// of the root window.
    Rect rootBounds;
    /// Mapped with all that holds it, not minimised, and on the current workspace. It may still be
    /// covered, or lie outside every monitor.
    bool isOnScreen = false;
    bool isOverrideRedirect = false;
};

/// Those of `windows` that still exist, in their order. All windows are asked at once: the cost is
/// two waits for the server, however many there are.
[[nodiscard]] std::vector<WindowIdentity> readIdentities(Connection& connection,
                                                         std::span<const ClientWindow> windows);

} // namespace kestrove::x11
