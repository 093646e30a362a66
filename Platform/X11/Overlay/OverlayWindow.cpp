#include "Platform/X11/Overlay/OverlayWindow.h"

#include "Platform/X11/Capture/PictureFormats.h"
#include "Platform/X11/Screens/Coordinates.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string_view>
#include <unistd.h>
#include <utility>
#include <vector>
#include <xcb/shape.h>

namespace kestrove::x11 {
namespace {

constexpr double lineWidthInPoints = 4;
constexpr double cornerRadiusInPoints = 8;
/// The system green of the desktop that this product was first made for.
constexpr std::uint32_t red = 0x34;
constexpr std::uint32_t green = 0xC7;
constexpr std::uint32_t blue = 0x59;

/// Premultiplied, as compositors want it.
std::uint32_t borderColor(double coverage) {
    const auto part = [coverage](std::uint32_t channel) {
        return static_cast<std::uint32_t>(std::lround(channel * coverage));
    };
    return part(0xFF) << 24U | part(red) << 16U | part(green) << 8U | part(blue);
}

int toPixels(double points, double pixelsPerPoint) {
    return std::max(1, static_cast<int>(std::lround(points * pixelsPerPoint)));
}

xcb_rectangle_t toPixels(const Rect& root) {
    const double left = std::round(root.minX());
    const double top = std::round(root.minY());
    return {static_cast<std::int16_t>(left), static_cast<std::int16_t>(top),
            static_cast<std::uint16_t>(std::max(1.0, std::round(root.maxX()) - left)),
            static_cast<std::uint16_t>(std::max(1.0, std::round(root.maxY()) - top))};
}

bool haveSameSize(const xcb_rectangle_t& a, const xcb_rectangle_t& b) {
    return a.width == b.width && a.height == b.height;
}

bool areSame(const xcb_rectangle_t& a, const xcb_rectangle_t& b) {
    return a.x == b.x && a.y == b.y && haveSameSize(a, b);
}

} // namespace

OverlayWindow::OverlayWindow(Connection& connection, const MonitorLayout& layout,
                             double pixelsPerPoint)
    : m_connection(connection)
    , m_layout(layout)
    , m_lineWidth(toPixels(lineWidthInPoints, pixelsPerPoint))
    , m_cornerRadius(toPixels(cornerRadiusInPoints, pixelsPerPoint)) {
    create();
    describe();
    m_events = connection.events.subscribe([this](const auto& event) { onEvent(event); });
    connection.flush();
}

void OverlayWindow::create() {
    auto* const xcb = m_connection.get();
    const auto& screen = m_connection.screen();
    const auto argb = PictureFormats(m_connection).argb32Visual();
    m_hasAlpha = argb != XCB_NONE;
    const auto visual = m_hasAlpha ? argb : screen.root_visual;
    const std::uint8_t depth = m_hasAlpha ? 32 : screen.root_depth;
    m_colormap = Colormap(m_connection, m_connection.generateIdentifier());
    xcb_create_colormap(xcb, XCB_COLORMAP_ALLOC_NONE, m_colormap.get(), screen.root, visual);
    m_window = Window(m_connection, m_connection.generateIdentifier());
    // Moved, it keeps what it shows; resized, all of it is painted anew.
    const std::array<std::uint32_t, 5> values{borderColor(1), 0, 1, XCB_EVENT_MASK_EXPOSURE,
                                              m_colormap.get()};
    xcb_create_window(xcb, depth, m_window.get(), screen.root, 0, 0, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT |
                          XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values.data());
    xcb_shape_rectangles(xcb, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                         m_window.get(), 0, 0, 0, nullptr);
    m_context = GraphicsContext(m_connection, m_connection.generateIdentifier());
    xcb_create_gc(xcb, m_context.get(), m_window.get(), 0, nullptr);
    xcb_xfixes_select_selection_input(xcb, screen.root, m_connection.atom("_NET_WM_CM_S0"),
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
}

/// No title: programs that let the user choose a window offer those that have one.
void OverlayWindow::describe() {
    const auto setNumber = [this](std::string_view name, std::uint32_t value) {
        xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_window.get(),
                            m_connection.atom(name), XCB_ATOM_CARDINAL, 32, 1, &value);
    };
    const auto setText = [this](xcb_atom_t name, std::string_view text) {
        xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_window.get(), name,
                            XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(text.size()),
                            text.data());
    };
    setNumber("_NET_WM_PID", static_cast<std::uint32_t>(getpid()));
    std::array<char, 256> machine{};
    if (gethostname(machine.data(), machine.size() - 1) == 0)
        setText(XCB_ATOM_WM_CLIENT_MACHINE, machine.data());
    setText(XCB_ATOM_WM_CLASS, std::string_view("kestrove\0Kestrove\0", 18));
    // Compositors draw shadows for windows that they know nothing of, and stop their work for one
    // that covers the screen.
    setNumber("_COMPTON_SHADOW", 0);
    constexpr std::uint32_t neverBypass = 2;
    setNumber("_NET_WM_BYPASS_COMPOSITOR", neverBypass);
}

void OverlayWindow::setFrame(const Rect& frame) {
    if (!m_window)
        return;
    const auto place = toPixels(Coordinates(m_layout.monitors()).rootRect(frame));
    if (m_place && areSame(*m_place, place))
        return;
    const bool isResized = !m_place || !haveSameSize(*m_place, place);
    m_place = place;
    const std::array<std::uint32_t, 4> values{static_cast<std::uint32_t>(std::int32_t{place.x}),
                                              static_cast<std::uint32_t>(std::int32_t{place.y}),
                                              place.width, place.height};
    xcb_configure_window(m_connection.get(), m_window.get(),
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    if (isResized) {
        m_edges = isComposited() ? RingEdges::smooth : RingEdges::sharp;
        reshape();
    }
    m_connection.flush();
}

void OverlayWindow::orderFrontRegardless() {
    if (!m_window)
        return;
    m_isVisible = true;
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection.get(), m_window.get(), XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_map_window(m_connection.get(), m_window.get());
    m_connection.flush();
}

void OverlayWindow::orderOut() {
    m_isVisible = false;
    if (!m_window)
        return;
    xcb_unmap_window(m_connection.get(), m_window.get());
    m_connection.flush();
}

void OverlayWindow::onEvent(const xcb_generic_event_t& event) {
    const int type = event.response_type & 0x7F;
    if (type == XCB_EXPOSE) {
        const auto& expose = reinterpret_cast<const xcb_expose_event_t&>(event);
        if (expose.window == m_window.get() && expose.count == 0)
            paintEdges();
    } else if (type == m_connection.extensions().fixesFirstEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto& notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
        if (notify.selection != m_connection.atom("_NET_WM_CM_S0") || !m_window)
            return;
        const auto edges =
            m_hasAlpha && notify.owner != XCB_NONE ? RingEdges::smooth : RingEdges::sharp;
        if (std::exchange(m_edges, edges) == edges || !m_place)
            return;
        reshape();
        // The server shows it anew all over, and tells.
        xcb_clear_area(m_connection.get(), 1, m_window.get(), 0, 0, 0, 0);
        m_connection.flush();
    }
}

void OverlayWindow::reshape() {
    const auto ring = ringRectangles(measures(), m_edges);
    xcb_shape_rectangles(m_connection.get(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED, m_window.get(), 0, 0,
                         static_cast<std::uint32_t>(ring.size()), ring.data());
}

/// The window's background is the colour of the line; only what the line covers in part differs.
void OverlayWindow::paintEdges() {
    if (!m_window || !m_place || m_edges == RingEdges::sharp)
        return;
    std::map<std::uint32_t, std::vector<xcb_rectangle_t>> pixels;
    for (const auto& pixel : partlyCoveredPixels(measures()))
        pixels[borderColor(pixel.coverage)].push_back({pixel.x, pixel.y, 1, 1});
    for (const auto& [color, places] : pixels) {
        xcb_change_gc(m_connection.get(), m_context.get(), XCB_GC_FOREGROUND, &color);
        xcb_poly_fill_rectangle(m_connection.get(), m_window.get(), m_context.get(),
                                static_cast<std::uint32_t>(places.size()), places.data());
    }
    m_connection.flush();
}

bool OverlayWindow::isComposited() {
    const auto owner = m_connection.reply(
        xcb_get_selection_owner_reply,
        xcb_get_selection_owner(m_connection.get(), m_connection.atom("_NET_WM_CM_S0")));
    return m_hasAlpha && owner && owner->owner != XCB_NONE;
}

RingMeasures OverlayWindow::measures() const {
    return {m_place->width, m_place->height, m_lineWidth, m_cornerRadius};
}

} // namespace kestrove::x11
