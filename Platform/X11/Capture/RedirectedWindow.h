#pragma once

#include "Async/Signal.h"
#include "Platform/X11/Capture/PictureFormats.h"
#include "Platform/X11/Capture/Region.h"
#include "Platform/X11/Capture/ServerResource.h"
#include "Platform/X11/Connection.h"

#include <optional>

namespace kestrove::x11 {

/// A window whose content the server keeps in a pixmap of its own on our behalf, also where the
/// window is covered or off screen, and whose changes we are told of.
///
/// Our redirection stands beside a compositor's and survives it. The server gives a window a new
/// pixmap whenever it is mapped or resized: `redirectAnew` and `rename` make us use the new one.
///
/// Without a compositor the server fills that pixmap with what is on the screen, so also with the
/// windows that cover this one, and asks the program to draw what is not its own. Till it does, a
/// moment later or never where it hangs, these pixels are black here: nobody shall see, as a part
/// of this window, what covers it.
///
/// Thread: main.
class RedirectedWindow {
public:
    /// `format` is that of the window's visual, `border` the width of its border in pixels.
    RedirectedWindow(Connection& connection, PictureFormats::Format format, xcb_window_t window,
                     int border);
    RedirectedWindow(const RedirectedWindow&) = delete;
    RedirectedWindow& operator=(const RedirectedWindow&) = delete;
    ~RedirectedWindow();

    [[nodiscard]] xcb_window_t window() const { return m_window; }
    [[nodiscard]] const PictureFormats::Format& format() const { return m_format; }

    /// The window's pixels, its border included. Void while the window is not viewable: drawing
    /// from it then does nothing.
    [[nodiscard]] xcb_render_picture_t picture() const { return m_picture.get(); }
    [[nodiscard]] xcb_pixmap_t pixmap() const { return m_pixmap.get(); }

    /// The window was mapped.
    void redirectAnew();
    /// The window was resized. What it gained where it is covered may be another window's for a
    /// moment: what its program has drawn meanwhile cannot be told from that.
    void rename(int border);

    /// Limits what is told to `interest` (pixels of the outer rectangle). The rest, once changed,
    /// stays changed until something of interest is accepted, and wakes nobody up till then.
    void setInterest(const Region& interest);

    /// Forgets the changes told so far, before they are drawn, so that later ones are told.
    void acceptDamage();

    /// Pixels of the window's outer rectangle that have changed. May be told many times a change.
    Signal<Region> damaged;

private:
    void redirect();
    void unredirect();
    void tell(const xcb_rectangle_t& insideBorder);

    Connection& m_connection;
    std::weak_ptr<const void> m_lifetime;
    PictureFormats::Format m_format;
    xcb_window_t m_window;
    int m_border;
    DamageMonitor m_damage;
    /// Pixels of the outer rectangle; absent for all of them.
    std::optional<Region> m_interest;
    /// Something was told since the changes were last accepted.
    bool m_isDamaged = false;
    Pixmap m_pixmap;
    Picture m_picture;
    Subscription m_damageTold;
};

} // namespace kestrove::x11
