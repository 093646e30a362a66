#pragma once

#include "Async/Signal.h"
#include "Platform/X11/Capture/Region.h"
#include "Platform/X11/Connection.h"

#include <map>
#include <optional>
#include <set>
#include <vector>

namespace kestrove::x11 {

/// A child of the root window. All numbers are pixels; the place is that of the outer edge of the
/// window's border, in root coordinates.
struct StackedWindow {
    xcb_window_t window = XCB_NONE;
    int x = 0;
    int y = 0;
    /// Without the border.
    int width = 0;
    int height = 0;
    int border = 0;
    bool isMapped = false;
    /// Input-only windows are never seen.
    bool isInputOnly = false;
    xcb_visualid_t visual = XCB_NONE;
    /// 0 (transparent) to 1 (opaque), as window managers and programs ask of a compositor.
    double opacity = 1;
    /// What is left of the window by its shape, relative to `x`, `y`; absent for a plain rectangle.
    std::optional<Region> shape;

    [[nodiscard]] bool isVisible() const { return isMapped && !isInputOnly; }
    /// Root coordinates, border included.
    [[nodiscard]] Region region() const;

    bool operator==(const StackedWindow&) const = default;
};

/// The root's children in stacking order, followed by events: nothing is asked of the server but
/// for windows that are new.
///
/// Thread: main.
class WindowStack {
public:
    explicit WindowStack(Connection& connection);
    WindowStack(const WindowStack&) = delete;
    WindowStack& operator=(const WindowStack&) = delete;
    ~WindowStack();

    /// Bottom to top. The compositor's overlay is not among them.
    [[nodiscard]] const std::vector<StackedWindow>& windows() const { return m_windows; }
    [[nodiscard]] const StackedWindow* find(xcb_window_t window) const;
    /// The root's child that is, or holds, `window`; none when it has gone.
    [[nodiscard]] xcb_window_t topLevelOf(xcb_window_t window);
    /// Whether a compositing manager paints the screen.
    [[nodiscard]] bool isComposited() const { return m_isComposited; }

    /// Something of the above is different. Told once for all events that had arrived.
    Signal<> changed;

private:
    void readAll();
    void readCompositor();
    void add(xcb_window_t window);
    void describe(std::vector<StackedWindow>& windows);
    void readShape(StackedWindow& window);
    void readOpacity(StackedWindow& window);
    void onEvent(const xcb_generic_event_t& event);
    bool onStructureEvent(const xcb_generic_event_t& event);
    void onConfigure(const xcb_configure_notify_event_t& event);
    void onCompositorChange();
    void remove(xcb_window_t window);
    void placeAbove(xcb_window_t window, xcb_window_t sibling);
    StackedWindow* findMutable(xcb_window_t window);

    Connection& m_connection;
    std::weak_ptr<const void> m_lifetime;
    std::vector<StackedWindow> m_windows;
    std::map<xcb_window_t, xcb_window_t> m_topLevels;
    xcb_window_t m_overlay = XCB_NONE;
    bool m_isComposited = false;
    bool m_hasChanged = false;
    Subscription m_events;
    Subscription m_drained;
};

} // namespace kestrove::x11
