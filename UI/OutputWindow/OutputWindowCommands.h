#pragma once

#include <functional>

class QMenu;

namespace kestrove {

/// What the user can do from the output window itself: the way in on desktops that show no tray.
/// Called from the main loop, while the window exists.
struct OutputWindowCommands {
    /// Whether sharing is on or on its way to or from it: there is something to stop.
    std::function<bool()> isSharing;
    std::function<void()> start;
    std::function<void()> quit;
    /// The context menu; it outlives the window.
    std::function<QMenu&()> menu;
    /// The user has closed the window.
    std::function<void()> windowClosed;
};

} // namespace kestrove
