#pragma once

#include <cstdint>
#include <string_view>

#include <xcb/xcb.h>

namespace kestrove::bench {

/// A connection of its own to the X server that $DISPLAY names. Ends the program with a line on
/// standard error when there is none: a bench tool has nothing else to do then.
class Display {
public:
    Display();
    ~Display();
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    [[nodiscard]] xcb_connection_t* connection() const { return m_connection; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }

    /// A mapped window with that content rectangle, in root pixels, where window managers are asked
    /// to leave it. Returns when it is viewable.
    [[nodiscard]] xcb_window_t makeWindow(std::string_view title, const xcb_rectangle_t& geometry,
                                          std::uint32_t color) const;
    [[nodiscard]] xcb_gcontext_t makePen(std::uint32_t color) const;
    /// 0x00RRGGBB of one pixel of a viewable window, in window coordinates; waits for the server.
    [[nodiscard]] std::uint32_t pixel(xcb_window_t window, int x, int y) const;
    /// Returns when the server has carried out all requests so far.
    void settle() const;

private:
    /// Programs offer windows by the process and the application that they belong to.
    void sayWhose(xcb_window_t window) const;
    void demandExactPlace(xcb_window_t window, const xcb_rectangle_t& geometry) const;

    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen = nullptr;
};

} // namespace kestrove::bench
