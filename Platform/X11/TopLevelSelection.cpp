#include "Platform/X11/TopLevelSelection.h"

#include <span>

namespace kestrove::x11 {

TopLevelSelection::TopLevelSelection(Connection& connection, std::uint32_t mask)
    : m_connection(connection)
    , m_mask(mask)
    , m_root(connection, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY)
    , m_events(connection.events.subscribe([this](const auto& event) { handle(event); }))
    , m_opened(connection.opened.subscribe([this] {
        m_windows.clear();
        selectAll();
    })) {
    if (connection.isOpen())
        selectAll();
}

TopLevelSelection::~TopLevelSelection() {
    if (!m_connection.isOpen())
        return;
    for (const auto window : m_windows)
        m_connection.deselectEvents(window, m_mask);
    m_connection.flush();
}

void TopLevelSelection::selectAll() {
    const auto tree = m_connection.reply(xcb_query_tree_reply,
                                         xcb_query_tree(m_connection.get(), m_connection.root()));
    if (!tree)
        return;
    for (const auto child : std::span(xcb_query_tree_children(tree.get()), tree->children_len))
        add(child);
    m_connection.flush();
}

void TopLevelSelection::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7F) {
    case XCB_CREATE_NOTIFY: {
        const auto& created = reinterpret_cast<const xcb_create_notify_event_t&>(event);
        if (created.parent == m_connection.root())
            add(created.window);
        break;
    }
    case XCB_REPARENT_NOTIFY: {
        const auto& reparented = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
        if (reparented.parent == m_connection.root())
            add(reparented.window);
        else
            remove(reparented.window);
        break;
    }
    case XCB_DESTROY_NOTIFY:
        remove(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
        break;
    default:
        return;
    }
    m_connection.flush();
}

void TopLevelSelection::add(xcb_window_t window) {
    if (m_windows.insert(window).second)
        m_connection.selectEvents(window, m_mask);
}

void TopLevelSelection::remove(xcb_window_t window) {
    if (m_windows.erase(window) > 0)
        m_connection.deselectEvents(window, m_mask);
}

} // namespace kestrove::x11
