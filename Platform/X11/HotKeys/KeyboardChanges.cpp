#include "Platform/X11/HotKeys/KeyboardChanges.h"

#include "Platform/X11/HotKeys/XkbProtocol.h"

#include <utility>

namespace kestrove::x11 {

namespace {

constexpr std::uint16_t coreKeyboard = XCB_XKB_ID_USE_CORE_KBD;
constexpr std::uint16_t notices =
    XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
constexpr std::uint16_t mapParts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP |
                                   XCB_XKB_MAP_PART_VIRTUAL_MODS | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;

/// Every event of the extension has its kind in the same place.
std::uint8_t kindOf(const xcb_generic_event_t& event) {
    return event.pad0;
}

} // namespace

KeyboardChanges::KeyboardChanges(Connection& connection)
    : m_connection(connection)
    , m_events(connection.events.subscribe([this](const auto& event) { onEvent(event); }))
    , m_drained(connection.eventsDrained.subscribe([this] {
        if (std::exchange(m_hasChanged, false))
            changed.emit();
    }))
    , m_opened(connection.opened.subscribe([this] {
        set();
        m_hasChanged = true;
    })) {
    set();
}

void KeyboardChanges::set() {
    auto* const server = m_connection.get();
    const auto* const extension = xcb_get_extension_data(server, &xcb_xkb_id);
    if (extension == nullptr || extension->present == 0) {
        m_firstEvent = 0;
        return;
    }
    m_firstEvent = extension->first_event;
    (void)m_connection.reply(xcb_xkb_use_extension_reply, xcb_xkb_use_extension(server, 1, 0));
    xcb_xkb_select_events(server, coreKeyboard, notices, 0, notices, mapParts, mapParts, nullptr);
    m_connection.flush();
}

void KeyboardChanges::onEvent(const xcb_generic_event_t& event) {
    const auto type = event.response_type & 0x7FU;
    if (type == XCB_MAPPING_NOTIFY) {
        const auto& mapping = reinterpret_cast<const xcb_mapping_notify_event_t&>(event);
        m_hasChanged = m_hasChanged || mapping.request != XCB_MAPPING_POINTER;
    } else if (m_firstEvent != 0 && type == m_firstEvent) {
        m_hasChanged = m_hasChanged || kindOf(event) == XCB_XKB_NEW_KEYBOARD_NOTIFY ||
                       kindOf(event) == XCB_XKB_MAP_NOTIFY;
    }
}

} // namespace kestrove::x11
