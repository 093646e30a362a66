#include "Platform/X11/SingleInstance.h"

#include <algorithm>
#include <poll.h>
#include <unistd.h>
#include <utility>

#include <fmt/format.h>

namespace kestrove::x11 {

namespace {

constexpr std::uint8_t eventType(const xcb_generic_event_t& event) {
    return event.response_type & 0x7F;
}

} // namespace

SingleInstance::SingleInstance(const std::string& name)
    : m_connection(xcb_connect(nullptr, nullptr)) {
    auto* const connection = m_connection.get();
    if (xcb_connection_has_error(connection) != 0)
        return;
    m_window = xcb_generate_id(connection);
    const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_window, screen->root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    m_selection = atom(fmt::format("{}.{}", name, getuid()));
    m_open = atom("OPEN");
}

xcb_atom_t SingleInstance::atom(const std::string& name) const {
    auto* const connection = m_connection.get();
    const auto asked =
        xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, asked, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

InstanceClaim SingleInstance::claim(std::chrono::milliseconds patience, StartedBy startedBy) {
    const auto deadline = Clock::now() + patience;
    while (xcb_connection_has_error(m_connection.get()) == 0) {
        const auto other = otherOwnerOrTake();
        if (other == XCB_WINDOW_NONE)
            return InstanceClaim::first;
        if (startedBy == StartedBy::session)
            return InstanceClaim::handedOver;
        if (const auto isAnswered = ask(other, deadline))
            return *isAnswered ? InstanceClaim::handedOver : InstanceClaim::unanswered;
    }
    return InstanceClaim::unanswered;
}

xcb_window_t SingleInstance::otherOwnerOrTake() const {
    auto* const connection = m_connection.get();
    const auto before = owner();
    if (before == XCB_WINDOW_NONE) {
        xcb_set_selection_owner(connection, m_window, m_selection, XCB_CURRENT_TIME);
        // Of two that start together both may have found none: the last one to take it has it, and
        // the other one is told, now or later.
        const auto taken = owner();
        return taken == m_window ? xcb_window_t{XCB_WINDOW_NONE} : taken;
    }
    // It may end before it answers.
    const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, before, XCB_CW_EVENT_MASK, &mask);
    return before;
}

xcb_window_t SingleInstance::owner() const {
    auto* const connection = m_connection.get();
    const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection, xcb_get_selection_owner(connection, m_selection), nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

std::optional<bool> SingleInstance::ask(xcb_window_t other, Clock::time_point deadline) const {
    auto* const connection = m_connection.get();
    xcb_convert_selection(connection, m_window, m_selection, m_open, m_open, XCB_CURRENT_TIME);
    xcb_flush(connection);
    while (const auto event = nextEvent(deadline)) {
        if (eventType(*event) == XCB_SELECTION_NOTIFY) {
            const auto& notify = reinterpret_cast<const xcb_selection_notify_event_t&>(*event);
            return notify.property == XCB_ATOM_NONE ? std::nullopt : std::optional(true);
        }
        if (eventType(*event) == XCB_DESTROY_NOTIFY &&
            reinterpret_cast<const xcb_destroy_notify_event_t&>(*event).window == other)
            return std::nullopt;
    }
    return false;
}

Reply<xcb_generic_event_t> SingleInstance::nextEvent(Clock::time_point deadline) const {
    auto* const connection = m_connection.get();
    for (;;) {
        if (Reply<xcb_generic_event_t> event(xcb_poll_for_event(connection)); event)
            return event;
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || xcb_connection_has_error(connection) != 0)
            return nullptr;
        pollfd readable{.fd = xcb_get_file_descriptor(connection), .events = POLLIN, .revents = 0};
        (void)poll(&readable, 1, static_cast<int>(left.count()));
    }
}

void SingleInstance::listen(DescriptorWatching& watching, std::function<void()> started,
                            std::function<void()> takenOver) {
    m_started = std::move(started);
    m_takenOver = std::move(takenOver);
    m_readable = watching.watchReadable(xcb_get_file_descriptor(m_connection.get()),
                                        [this] { readEvents(); });
    // What has been read already makes the descriptor readable no more.
    readEvents();
}

void SingleInstance::readEvents() {
    auto* const connection = m_connection.get();
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
        if (eventType(*event) == XCB_SELECTION_REQUEST)
            answer(reinterpret_cast<const xcb_selection_request_event_t&>(*event));
        else if (eventType(*event) == XCB_SELECTION_CLEAR)
            m_takenOver();
    }
    // The server has gone, and nobody can start here any more.
    if (xcb_connection_has_error(connection) != 0)
        m_readable.cancel();
}

void SingleInstance::answer(const xcb_selection_request_event_t& request) {
    auto* const connection = m_connection.get();
    const bool isStart = request.target == m_open && request.property != XCB_ATOM_NONE;
    if (isStart)
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            XCB_ATOM_ATOM, 32, 0, nullptr);
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = isStart ? request.property : xcb_atom_t{XCB_ATOM_NONE};
    xcb_send_event(connection, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&notify));
    xcb_flush(connection);
    if (isStart)
        m_started();
}

} // namespace kestrove::x11
