#pragma once

#include "Platform/X11/Connection.h"

#include <cstdint>
#include <string_view>

namespace kestrove::x11 {

/// Events of the root window, selected as long as this lives, over lost connections too. They come
/// through the connection's `events`.
///
/// Thread: main. Lifetime: not longer than the connection.
class RootSelection {
public:
    RootSelection(Connection& connection, std::uint32_t mask)
        : m_connection(connection)
        , m_mask(mask) {
        m_opened = connection.opened.subscribe([this] { select(); });
        if (connection.isOpen())
            select();
    }
    RootSelection(const RootSelection&) = delete;
    RootSelection& operator=(const RootSelection&) = delete;
    ~RootSelection() {
        if (m_connection.isOpen())
            m_connection.deselectEvents(m_connection.root(), m_mask);
    }

    /// Whether the event tells that this property of the root was changed.
    [[nodiscard]] bool isChangeOf(const xcb_generic_event_t& event, std::string_view property) {
        if ((event.response_type & 0x7F) != XCB_PROPERTY_NOTIFY)
            return false;
        const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        return notify.window == m_connection.root() && notify.atom == m_connection.atom(property);
    }

private:
    void select() {
        m_connection.selectEvents(m_connection.root(), m_mask);
        m_connection.flush();
    }

    Connection& m_connection;
    std::uint32_t m_mask;
    Subscription m_opened;
};

} // namespace kestrove::x11
