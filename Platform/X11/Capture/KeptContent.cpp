#include "Platform/X11/Capture/KeptContent.h"

#include <algorithm>
#include <utility>
#include <xcb/composite.h>

namespace kestrove::x11 {

namespace {

/// A window that is dragged across comes and goes many times.
constexpr Seconds uncoveredFor{1};

} // namespace

KeptContent::KeptContent(MainLoop& loop, MonitorLayout& monitors, xcb_connection_t* toolkit)
    : m_loop(loop)
    , m_monitors(monitors)
    , m_toolkit(toolkit) {}

void KeptContent::keep(xcb_window_t window) {
    m_window = window;
    m_isKept = false;
    set(true);
    look();
}

void KeptContent::setParked(bool isParked) {
    m_isParked = isParked;
    look();
}

Subscription KeptContent::follow(WindowStack& stack) {
    m_stack = &stack;
    m_stackChanged = stack.changed.subscribe([this] { look(); });
    m_monitorsChanged = m_monitors.changed.subscribe([this] { look(); });
    look();
    return Subscription([this, followed = &stack] {
        if (m_stack != followed)
            return;
        m_stack = nullptr;
        m_stackChanged.cancel();
        m_monitorsChanged.cancel();
        look();
    });
}

void KeptContent::look() {
    if (m_window == XCB_WINDOW_NONE)
        return;
    if (!canBeReadFromTheScreen()) {
        m_givingUp.cancel();
        set(true);
    } else if (m_isKept && !m_givingUp.isPending()) {
        m_givingUp = m_loop.runAfter(uncoveredFor, [this] { set(false); });
    }
}

bool KeptContent::canBeReadFromTheScreen() {
    if (!m_stack || m_isParked)
        return false;
    const auto& windows = m_stack->windows();
    const auto own =
        std::ranges::find(windows, m_stack->topLevelOf(m_window), &StackedWindow::window);
    if (own == windows.end() || !own->isVisible())
        return false;
    auto outside = own->region();
    for (const auto& monitor : m_monitors.monitors())
        outside -= Region(monitor.rectangle);
    if (!outside.isEmpty())
        return false;
    // A compositor keeps the content of all windows.
    return m_stack->isComposited() || std::none_of(std::next(own), windows.end(), [&](auto& above) {
               return above.isVisible() && !(above.region() & own->region()).isEmpty();
           });
}

void KeptContent::set(bool isKept) {
    if (std::exchange(m_isKept, isKept) == isKept)
        return;
    // A compositor's redirection can stand beside it: only what both sides paint by themselves
    // cannot be shared.
    if (isKept)
        xcb_composite_redirect_window(m_toolkit, m_window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    else
        xcb_composite_unredirect_window(m_toolkit, m_window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    xcb_flush(m_toolkit);
}

} // namespace kestrove::x11
