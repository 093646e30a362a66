#include "Platform/X11/WindowParking.h"

#include <array>
#include <cstdint>
#include <utility>

namespace kestrove::x11 {

namespace {

// WM_STATE as the Inter-Client Communication Conventions lay it out: state and icon window.
constexpr std::uint32_t normalState = 1;
constexpr std::uint32_t watchedEvents =
    XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;

} // namespace

WindowParking::WindowParking(Connection& connection, xcb_connection_t* toolkit)
    : m_connection(connection)
    , m_toolkit(toolkit)
    , m_events(connection.events.subscribe([this](const auto& event) { onEvent(event); }))
    , m_drained(connection.eventsDrained.subscribe([this] {
        if (std::exchange(m_isToBeChecked, false)) {
            assertPlace();
            assertState();
        }
    }))
    , m_opened(connection.opened.subscribe([this] { watch(); })) {}

void WindowParking::park(NativeViewHandle window, const xcb_rectangle_t& place) {
    const auto target = static_cast<xcb_window_t>(window);
    if (m_parked && m_parked->window != target)
        release(m_parked->window);
    const bool isNew = !m_parked;
    m_parked = Parked{target, place};
    if (isNew)
        watch();
    assertPlace();
    assertState();
}

void WindowParking::release(NativeViewHandle window) {
    if (!m_parked || m_parked->window != static_cast<xcb_window_t>(window))
        return;
    unwatch();
    m_parked.reset();
}

void WindowParking::watch() {
    if (m_parked && m_connection.isOpen()) {
        m_connection.selectEvents(m_parked->window, watchedEvents);
        // Before anything is requested over the other connection whose answer is to be seen.
        m_connection.synchronize();
    }
}

void WindowParking::unwatch() {
    m_connection.deselectEvents(m_parked->window, watchedEvents);
    m_connection.flush();
}

void WindowParking::onEvent(const xcb_generic_event_t& event) {
    if (!m_parked)
        return;
    // All of these begin alike: with the window that was selected.
    struct AnyOfThem {
        std::uint8_t type;
        std::uint8_t pad;
        std::uint16_t sequence;
        xcb_window_t window;
    };
    switch (event.response_type & 0x7F) {
    case XCB_REPARENT_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_PROPERTY_NOTIFY:
        if (reinterpret_cast<const AnyOfThem&>(event).window == m_parked->window)
            m_isToBeChecked = true;
        break;
    default:
        break;
    }
}

void WindowParking::assertPlace() {
    if (!m_parked)
        return;
    const auto [window, place] = *m_parked;
    // Asked over the toolkit's connection: whatever it has requested counts.
    const auto askedTree = xcb_query_tree(m_toolkit, window);
    const auto askedAttributes = xcb_get_window_attributes(m_toolkit, window);
    const auto askedGeometry = xcb_get_geometry(m_toolkit, window);
    const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(m_toolkit, askedTree, nullptr));
    const Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(m_toolkit, askedAttributes, nullptr));
    const Reply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(m_toolkit, askedGeometry, nullptr));
    if (!tree || !attributes || !geometry)
        return;
    if (tree->parent != tree->root) {
        xcb_reparent_window(m_toolkit, window, tree->root, place.x, place.y);
    } else if (geometry->x != place.x || geometry->y != place.y) {
        const std::array<std::uint32_t, 2> origin{static_cast<std::uint32_t>(place.x),
                                                  static_cast<std::uint32_t>(place.y)};
        xcb_configure_window(m_toolkit, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                             origin.data());
    }
    if (geometry->width != place.width || geometry->height != place.height) {
        const std::array<std::uint32_t, 2> size{place.width, place.height};
        xcb_configure_window(m_toolkit, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                             size.data());
    }
    if (attributes->map_state == XCB_MAP_STATE_UNMAPPED)
        xcb_map_window(m_toolkit, window);
    xcb_flush(m_toolkit);
}

void WindowParking::assertState() {
    if (!m_parked)
        return;
    const auto state = m_connection.atom("WM_STATE");
    const auto asked = xcb_get_property(m_toolkit, 0, m_parked->window, state, state, 0, 2);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(m_toolkit, asked, nullptr));
    if (reply && reply->format == 32 && reply->value_len > 0 &&
        *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get())) == normalState)
        return;
    const std::array<std::uint32_t, 2> normal{normalState, XCB_WINDOW_NONE};
    xcb_change_property(m_toolkit, XCB_PROP_MODE_REPLACE, m_parked->window, state, state, 32,
                        normal.size(), normal.data());
    xcb_flush(m_toolkit);
}

} // namespace kestrove::x11
