#pragma once

#include "Async/MainLoop.h"
#include "Async/Subscription.h"
#include "Platform/X11/Capture/WindowStack.h"
#include "Platform/X11/Screens/MonitorLayout.h"

#include <xcb/xcb.h>

namespace kestrove::x11 {

/// Has the server keep the content of one window of ours in a pixmap of its own, as a compositor
/// would have it do, so that whoever asks for the window's pixels gets them, also where it is
/// covered or outside the screens.
///
/// It costs a second copy of everything that is drawn. So while captures run, which make us know
/// all windows, the pixmap is given up once the window could be read from the screen for a while.
///
/// The requests go over the toolkit's connection: they outlast the one that captures.
///
/// Thread: main. Lifetime: what is given outlives it.
class KeptContent {
public:
    KeptContent(MainLoop& loop, MonitorLayout& monitors, xcb_connection_t* toolkit);

    /// From now on, for this window. It exists.
    void keep(xcb_window_t window);

    /// A parked window is always kept. Told before it leaves the screens.
    void setParked(bool isParked);

    /// Follows the stack until the subscription ends, which is before the stack does.
    [[nodiscard]] Subscription follow(WindowStack& stack);

private:
    void look();
    [[nodiscard]] bool canBeReadFromTheScreen();
    void set(bool isKept);

    MainLoop& m_loop;
    MonitorLayout& m_monitors;
    xcb_connection_t* m_toolkit;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    WindowStack* m_stack = nullptr;
    bool m_isParked = false;
    bool m_isKept = false;
    Timer m_givingUp;
    Subscription m_stackChanged;
    Subscription m_monitorsChanged;
};

} // namespace kestrove::x11
