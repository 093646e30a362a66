#include "Platform/X11/Capture/WindowStack.h"

#include <algorithm>
#include <fmt/format.h>
#include <utility>
#include <xcb/composite.h>
#include <xcb/shape.h>
#include <xcb/xfixes.h>

namespace kestrove::x11 {
namespace {

constexpr double opaqueCardinal = 0xFFFFFFFFU;

} // namespace

Region StackedWindow::region() const {
    return shape ? shape->translated(x, y) : Region(x, y, width + 2 * border, height + 2 * border);
}

WindowStack::WindowStack(Connection& connection)
    : m_connection(connection)
    , m_lifetime(connection.lifetime())
    , m_events(connection.events.subscribe([this](const auto& event) { onEvent(event); }))
    , m_drained(connection.eventsDrained.subscribe([this] {
        if (std::exchange(m_hasChanged, false))
            changed.emit();
    })) {
    readAll();
}

WindowStack::~WindowStack() {
    if (m_lifetime.expired())
        return;
    m_connection.deselectEvents(m_connection.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    for (const auto& each : m_windows)
        m_connection.deselectEvents(each.window, XCB_EVENT_MASK_PROPERTY_CHANGE);
}

void WindowStack::readAll() {
    // Selected before reading, so that what happens in between is told after it.
    m_connection.selectEvents(m_connection.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    const auto selection = m_connection.atom("_NET_WM_CM_S0");
    xcb_xfixes_select_selection_input(m_connection.get(), m_connection.root(), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    readCompositor();
    const auto tree = m_connection.reply(xcb_query_tree_reply,
                                         xcb_query_tree(m_connection.get(), m_connection.root()));
    if (!tree)
        return;
    const auto* children = xcb_query_tree_children(tree.get());
    std::vector<StackedWindow> found;
    for (int index = 0; index < xcb_query_tree_children_length(tree.get()); ++index) {
        StackedWindow window;
        window.window = children[index];
        if (window.window != m_overlay)
            found.push_back(window);
    }
    describe(found);
    m_windows = std::move(found);
    m_hasChanged = true;
}

void WindowStack::describe(std::vector<StackedWindow>& windows) {
    auto* const xcb = m_connection.get();
    const auto opacity = m_connection.atom("_NET_WM_WINDOW_OPACITY");
    struct Cookies {
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_geometry_cookie_t geometry;
        xcb_shape_query_extents_cookie_t shape;
        xcb_get_property_cookie_t opacity;
    };
    std::vector<Cookies> cookies;
    cookies.reserve(windows.size());
    for (const auto& each : windows) {
        m_connection.selectEvents(each.window, XCB_EVENT_MASK_PROPERTY_CHANGE);
        xcb_shape_select_input(xcb, each.window, 1);
        cookies.push_back(
            {xcb_get_window_attributes(xcb, each.window), xcb_get_geometry(xcb, each.window),
             xcb_shape_query_extents(xcb, each.window),
             xcb_get_property(xcb, 0, each.window, opacity, XCB_ATOM_CARDINAL, 0, 1)});
    }
    for (std::size_t index = 0; index < windows.size(); ++index) {
        auto& window = windows[index];
        const auto attributes =
            m_connection.reply(xcb_get_window_attributes_reply, cookies[index].attributes);
        const auto geometry = m_connection.reply(xcb_get_geometry_reply, cookies[index].geometry);
        const auto shape = m_connection.reply(xcb_shape_query_extents_reply, cookies[index].shape);
        const auto value = m_connection.reply(xcb_get_property_reply, cookies[index].opacity);
        if (!attributes || !geometry)
            continue;
        window.isMapped = attributes->map_state != XCB_MAP_STATE_UNMAPPED;
        window.isInputOnly = attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY;
        window.visual = attributes->visual;
        window.x = geometry->x;
        window.y = geometry->y;
        window.width = geometry->width;
        window.height = geometry->height;
        window.border = geometry->border_width;
        if (shape && shape->bounding_shaped)
            readShape(window);
        if (value && xcb_get_property_value_length(value.get()) == 4)
            window.opacity =
                *static_cast<const std::uint32_t*>(xcb_get_property_value(value.get())) /
                opaqueCardinal;
    }
}

void WindowStack::readShape(StackedWindow& window) {
    const auto answer = m_connection.reply(
        xcb_shape_get_rectangles_reply,
        xcb_shape_get_rectangles(m_connection.get(), window.window, XCB_SHAPE_SK_BOUNDING));
    if (!answer)
        return;
    const auto count =
        static_cast<std::size_t>(xcb_shape_get_rectangles_rectangles_length(answer.get()));
    // Shapes are told relative to the window inside its border.
    window.shape = Region(std::span(xcb_shape_get_rectangles_rectangles(answer.get()), count))
                       .translated(window.border, window.border);
}

void WindowStack::readOpacity(StackedWindow& window) {
    const auto value = m_connection.reply(
        xcb_get_property_reply,
        xcb_get_property(m_connection.get(), 0, window.window,
                         m_connection.atom("_NET_WM_WINDOW_OPACITY"), XCB_ATOM_CARDINAL, 0, 1));
    const bool isSet = value && xcb_get_property_value_length(value.get()) == 4;
    window.opacity = isSet
                         ? *static_cast<const std::uint32_t*>(xcb_get_property_value(value.get())) /
                               opaqueCardinal
                         : 1;
}

void WindowStack::readCompositor() {
    const auto owner = m_connection.reply(
        xcb_get_selection_owner_reply,
        xcb_get_selection_owner(m_connection.get(), m_connection.atom("_NET_WM_CM_S0")));
    m_isComposited = owner && owner->owner != XCB_NONE;
    m_overlay = XCB_NONE;
    if (!m_isComposited)
        return;
    // The window that compositors paint on is the top of the stack, but it is the screen itself. It
    // is only asked for while a compositor keeps it: asking would create it otherwise.
    const auto overlay = m_connection.reply(
        xcb_composite_get_overlay_window_reply,
        xcb_composite_get_overlay_window(m_connection.get(), m_connection.root()));
    if (!overlay)
        return;
    m_overlay = overlay->overlay_win;
    xcb_composite_release_overlay_window(m_connection.get(), m_connection.root());
    m_connection.flush();
}

const StackedWindow* WindowStack::find(xcb_window_t window) const {
    const auto found = std::ranges::find(m_windows, window, &StackedWindow::window);
    return found == m_windows.end() ? nullptr : &*found;
}

StackedWindow* WindowStack::findMutable(xcb_window_t window) {
    const auto found = std::ranges::find(m_windows, window, &StackedWindow::window);
    return found == m_windows.end() ? nullptr : &*found;
}

xcb_window_t WindowStack::topLevelOf(xcb_window_t window) {
    if (find(window))
        return window;
    if (const auto known = m_topLevels.find(window); known != m_topLevels.end())
        return known->second;
    auto ancestor = window;
    while (!find(ancestor)) {
        const auto tree =
            m_connection.reply(xcb_query_tree_reply, xcb_query_tree(m_connection.get(), ancestor));
        if (!tree || tree->parent == XCB_NONE || tree->parent == m_connection.root())
            return XCB_NONE;
        ancestor = tree->parent;
    }
    return m_topLevels[window] = ancestor;
}

void WindowStack::onEvent(const xcb_generic_event_t& event) {
    if (onStructureEvent(event)) {
        m_hasChanged = true;
        return;
    }
    const int type = event.response_type & 0x7F;
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        auto* const window = findMutable(property.window);
        if (!window || property.atom != m_connection.atom("_NET_WM_WINDOW_OPACITY"))
            return;
        readOpacity(*window);
        m_hasChanged = true;
    } else if (type == m_connection.extensions().shapeFirstEvent + XCB_SHAPE_NOTIFY) {
        const auto& shape = reinterpret_cast<const xcb_shape_notify_event_t&>(event);
        auto* const window = findMutable(shape.affected_window);
        if (!window || shape.shape_kind != XCB_SHAPE_SK_BOUNDING)
            return;
        window->shape.reset();
        if (shape.shaped)
            readShape(*window);
        m_hasChanged = true;
    } else if (type == m_connection.extensions().fixesFirstEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        onCompositorChange();
    }
}

bool WindowStack::onStructureEvent(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
    case XCB_CREATE_NOTIFY: {
        const auto& create = reinterpret_cast<const xcb_create_notify_event_t&>(event);
        if (create.parent != m_connection.root())
            return false;
        add(create.window);
        return true;
    }
    case XCB_DESTROY_NOTIFY: {
        const auto& destroy = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
        m_topLevels.erase(destroy.window);
        if (destroy.event != m_connection.root())
            return false;
        remove(destroy.window);
        return true;
    }
    case XCB_REPARENT_NOTIFY: {
        const auto& reparent = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
        m_topLevels.clear();
        if (reparent.event != m_connection.root())
            return false;
        if (reparent.parent == m_connection.root())
            add(reparent.window);
        else
            remove(reparent.window);
        return true;
    }
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY: {
        // Both events begin alike.
        const auto& map = reinterpret_cast<const xcb_map_notify_event_t&>(event);
        auto* const window = findMutable(map.window);
        if (map.event != m_connection.root() || !window)
            return false;
        window->isMapped = (event.response_type & 0x7F) == XCB_MAP_NOTIFY;
        return true;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        if (configure.event != m_connection.root() || !find(configure.window))
            return false;
        onConfigure(configure);
        return true;
    }
    case XCB_GRAVITY_NOTIFY: {
        const auto& gravity = reinterpret_cast<const xcb_gravity_notify_event_t&>(event);
        auto* const window = findMutable(gravity.window);
        if (gravity.event != m_connection.root() || !window)
            return false;
        window->x = gravity.x;
        window->y = gravity.y;
        return true;
    }
    case XCB_CIRCULATE_NOTIFY: {
        const auto& circulate = reinterpret_cast<const xcb_circulate_notify_event_t&>(event);
        if (circulate.event != m_connection.root() || !find(circulate.window))
            return false;
        const bool toTop = circulate.place == XCB_PLACE_ON_TOP;
        placeAbove(circulate.window, toTop ? m_windows.back().window : XCB_NONE);
        return true;
    }
    default:
        return false;
    }
}

void WindowStack::onConfigure(const xcb_configure_notify_event_t& event) {
    auto* const window = findMutable(event.window);
    window->x = event.x;
    window->y = event.y;
    window->width = event.width;
    window->height = event.height;
    window->border = event.border_width;
    placeAbove(event.window, event.above_sibling);
}

void WindowStack::onCompositorChange() {
    // The overlay window comes and goes with its compositor and is told of like any other window.
    readCompositor();
    remove(m_overlay);
    m_hasChanged = true;
}

void WindowStack::add(xcb_window_t window) {
    if (window == m_overlay || find(window))
        return;
    std::vector<StackedWindow> added(1);
    added.front().window = window;
    describe(added);
    // A new window is on top; where it was restacked since is told by an event that follows.
    m_windows.push_back(std::move(added.front()));
}

void WindowStack::remove(xcb_window_t window) {
    if (std::erase_if(m_windows, [&](const auto& each) { return each.window == window; }) > 0)
        m_connection.deselectEvents(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
}

void WindowStack::placeAbove(xcb_window_t window, xcb_window_t sibling) {
    const auto current = std::ranges::find(m_windows, window, &StackedWindow::window);
    auto moved = std::move(*current);
    m_windows.erase(current);
    auto place = m_windows.begin();
    if (sibling != XCB_NONE) {
        place = std::ranges::find(m_windows, sibling, &StackedWindow::window);
        // The overlay counts as a sibling to the server; nothing of ours is above it.
        if (place != m_windows.end())
            ++place;
    }
    m_windows.insert(place, std::move(moved));
}

} // namespace kestrove::x11
