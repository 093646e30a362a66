#pragma once

#include "Desktop/DisplayLayer.h"
#include "Desktop/Geometry.h"

#include <optional>
#include <string>
#include <string_view>
#include <xcb/xcb.h>

namespace kestrove::x11 {

enum class Stacking { ordinary, above };

/// What a top-level window of this program asks of the window manager where its toolkit has no word
/// for it.
///
/// The connection is the toolkit's own, so that these requests keep their place among those that
/// the toolkit makes for the same window: it rewrites properties that are changed here.
///
/// Thread: main. Lifetime: the connection outlives it.
class WindowManagerRequests {
public:
    explicit WindowManagerRequests(xcb_connection_t* connection);

    /// Adds to the size hints that the window has already. Widths and heights, of which only the
    /// proportions count.
    void setContentAspectRatios(NativeViewHandle window, Size narrowest, Size widest);

    /// The window, which must be on the desktop, is on all workspaces from now on.
    void joinAllWorkspaces(NativeViewHandle window);

    /// The window, which must be on the desktop, is among those that task bars and pagers list.
    /// Window managers take one away from there that they see without having it to manage, and may
    /// take it back as such; some let nobody minimise it then.
    void joinLists(NativeViewHandle window);

    /// The window, which must be on the desktop, is kept above ordinary windows, or is one of them.
    void setStacking(NativeViewHandle window, Stacking stacking);

    /// In front, with the focus, as a pager would do it for the user: window managers refuse an
    /// application's own wish while the user works in another one. Without a window manager the
    /// window is raised and takes the focus by itself.
    void activate(NativeViewHandle window);

private:
    [[nodiscard]] xcb_atom_t atom(std::string_view name) const;
    [[nodiscard]] bool hasWindowManager() const;
    void sendToWindowManager(xcb_window_t window, std::string_view message,
                             xcb_client_message_data_t data) const;

    xcb_connection_t* m_connection;
    xcb_window_t m_root = XCB_WINDOW_NONE;
};

/// Why no X server can be reached as the environment says; absent when one can.
[[nodiscard]] std::optional<std::string> whyUnreachable();

} // namespace kestrove::x11
