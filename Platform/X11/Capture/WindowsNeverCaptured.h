#pragma once

#include "Async/Signal.h"

#include <set>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// Windows of our own, which are on no picture of a display, whatever its filter says. They need
/// not be shown yet.
///
/// Thread: main.
class WindowsNeverCaptured {
public:
    [[nodiscard]] const std::set<xcb_window_t>& windows() const { return m_windows; }

    void add(xcb_window_t window) {
        if (m_windows.insert(window).second)
            changed.emit();
    }
    /// The window goes: its number may come back as another's.
    void remove(xcb_window_t window) {
        if (m_windows.erase(window) > 0)
            changed.emit();
    }

    Signal<> changed;

private:
    std::set<xcb_window_t> m_windows;
};

} // namespace kestrove::x11
