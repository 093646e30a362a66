#pragma once

#include "Desktop/OverlayWindow.h"
#include "Platform/X11/Capture/ServerResource.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/Overlay/RingShape.h"
#include "Platform/X11/Screens/MonitorLayout.h"

#include <cstdint>
#include <optional>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// The frame as an override-redirect window whose bounding shape is the ring and whose input shape
/// is empty: it needs no compositor, no window manager knows it, and clicks go to what lies beneath
/// or inside. Where a compositor runs, the edges of its corners are smooth.
///
/// Nothing is asked of the server but when the size changes, a compositor comes or goes, or the
/// server has lost the content. After the connection was lost nothing is shown any more.
class OverlayWindow final : public kestrove::OverlayWindow {
public:
    /// Both must outlive this. `pixelsPerPoint` is what the desktop's programs enlarge their
    /// windows by: X itself has no scale.
    OverlayWindow(Connection& connection, const MonitorLayout& layout, double pixelsPerPoint);

    std::int64_t windowNumber() const override { return m_window.get(); }
    bool isVisible() const override { return m_isVisible; }
    void setFrame(const Rect& frame) override;
    void orderFrontRegardless() override;
    void orderOut() override;

private:
    void create();
    void describe();
    void onEvent(const xcb_generic_event_t& event);
    void reshape();
    void paintEdges();
    [[nodiscard]] bool isComposited();
    [[nodiscard]] RingMeasures measures() const;

    Connection& m_connection;
    const MonitorLayout& m_layout;
    int m_lineWidth;
    int m_cornerRadius;
    bool m_hasAlpha = false;
    Colormap m_colormap;
    Window m_window;
    GraphicsContext m_context;
    /// Pixels of the root window.
    std::optional<xcb_rectangle_t> m_place;
    RingEdges m_edges = RingEdges::sharp;
    bool m_isVisible = false;
    Subscription m_events;
};

} // namespace kestrove::x11
