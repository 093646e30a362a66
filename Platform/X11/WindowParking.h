#pragma once

#include "Async/Subscription.h"
#include "Desktop/DisplayLayer.h"
#include "Platform/X11/Connection.h"

#include <optional>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// Keeps one top-level window of this program outside every screen, viewable and in the Normal
/// state, so that other programs go on capturing it under the same identifier.
///
/// Window managers let no window that they manage leave the screens. So the window is taken from
/// its manager: the toolkit makes it override-redirect, and `park` moves it to the root, in one
/// request, during which no other program can find it unmapped. The manager learns of it afterwards
/// and cleans up as for a window that has gone, state, place and size included; whatever it thereby
/// changes is put right again at once.
///
/// The requests go over the toolkit's connection, so that they keep their place among its own; what
/// others do to the window is told over ours.
///
/// Thread: main. Lifetime: both connections outlive it.
class WindowParking {
public:
    WindowParking(Connection& connection, xcb_connection_t* toolkit);

    /// `place` is the window without its frame, in pixels of the root, outside every screen. The
    /// window is shown, and override-redirect. Again for another place or size.
    void park(NativeViewHandle window, const xcb_rectangle_t& place);

    /// The window is the toolkit's again to place and to show. Nothing for another window.
    void release(NativeViewHandle window);

private:
    struct Parked {
        xcb_window_t window;
        xcb_rectangle_t place;
    };

    void onEvent(const xcb_generic_event_t& event);
    void watch();
    void unwatch();
    void assertPlace();
    void assertState();

    Connection& m_connection;
    xcb_connection_t* m_toolkit;
    std::optional<Parked> m_parked;
    bool m_isToBeChecked = false;
    Subscription m_events;
    Subscription m_drained;
    Subscription m_opened;
};

} // namespace kestrove::x11
