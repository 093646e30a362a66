#include "Platform/X11/RawMotion.h"

#include <array>
#include <memory>
#include <utility>
#include <xcb/xinput.h>

namespace kestrove::x11 {

RawMotion::RawMotion(Connection& connection)
    : m_connection(connection)
    , m_events(connection.events.subscribe([this](const auto& event) { onEvent(event); }))
    , m_drained(connection.eventsDrained.subscribe([this] {
        if (std::exchange(m_hasMoved, false))
            m_moved.emit();
    }))
    , m_opened(connection.opened.subscribe([this] { select(); })) {}

Subscription RawMotion::subscribe(std::function<void()> moved) {
    if (++m_listeners == 1)
        select();
    auto inner = std::make_shared<Subscription>(m_moved.subscribe(std::move(moved)));
    return Subscription([this, inner, alive = std::weak_ptr(m_alive)] {
        inner->cancel();
        if (alive.lock() && --m_listeners == 0)
            select();
    });
}

void RawMotion::select() {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                m_listeners > 0 ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_MOTION} : 0U};
    if (m_listeners == 0)
        m_crossings.reset();
    else if (!m_crossings)
        m_crossings.emplace(m_connection,
                            XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW);
    // Waited for: whoever listens is told of every move from now on.
    (void)m_connection.succeeded(xcb_input_xi_select_events_checked(
        m_connection.get(), m_connection.root(), 1, &selection.head));
}

void RawMotion::onEvent(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7FU;
    if (type == XCB_ENTER_NOTIFY || type == XCB_LEAVE_NOTIFY) {
        const auto& crossing = reinterpret_cast<const xcb_enter_notify_event_t&>(event);
        if (m_crossings && m_crossings->contains(crossing.event))
            m_hasMoved = true;
    }
    if (type != XCB_GE_GENERIC)
        return;
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension == m_connection.extensions().inputOpcode &&
        generic.event_type == XCB_INPUT_RAW_MOTION)
        m_hasMoved = true;
}

} // namespace kestrove::x11
