#include "Platform/X11/HotKeys/X11HotKeys.h"

#include "Platform/X11/HotKeys/PhysicalKeys.h"

#include <algorithm>
#include <ranges>
#include <utility>

namespace kestrove::x11 {

X11HotKeys::X11HotKeys(Connection& connection)
    : m_connection(connection)
    , m_grabs(connection)
    , m_modifierMap(readModifierMap(connection))
    , m_keyboardChanges(connection)
    , m_changed(m_keyboardChanges.changed.subscribe([this] { followKeyboard(); }))
    , m_events(connection.events.subscribe([this](const auto& event) { onEvent(event); }))
    , m_opened(connection.opened.subscribe([this] { grabAnew(); })) {}

X11HotKeys::~X11HotKeys() {
    for (const auto& [reference, hotKey] : m_hotKeys)
        m_grabs.release(hotKey.code, hotKey.grabbed);
}

std::expected<Subscription, HotKeyStatus> X11HotKeys::installHandler(Handler handler) {
    return m_pressed.subscribe(std::move(handler));
}

std::expected<HotKeyReference, HotKeyStatus>
X11HotKeys::registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                           HotKeyIdentifier identifier) {
    if (!m_connection.isOpen())
        return std::unexpected(notConnected);
    const auto code = serverCodeOf(keyCode);
    if (!code)
        return std::unexpected(noSuchKey);
    if ((modifiers & ~ModifierMap::allHotKeyModifiers) != 0)
        return std::unexpected(noSuchModifier);
    HotKey hotKey{identifier, *code, modifiers, m_modifierMap.serverModifiers(modifiers), {}};
    // The server lets one client grab a combination twice.
    const bool isOurs = std::ranges::any_of(m_hotKeys | std::views::values, [&](const auto& each) {
        return each.code == hotKey.code && each.modifiers == hotKey.modifiers;
    });
    if (isOurs)
        return std::unexpected(taken);
    const auto wanted = wantedGrabs(hotKey);
    hotKey.grabbed = m_grabs.grab(hotKey.code, wanted);
    if (hotKey.grabbed != wanted) {
        m_grabs.release(hotKey.code, hotKey.grabbed);
        return std::unexpected(m_connection.isOpen() ? taken : notConnected);
    }
    const auto reference = m_nextReference++;
    m_hotKeys.emplace(reference, std::move(hotKey));
    return reference;
}

HotKeyStatus X11HotKeys::unregisterHotKey(HotKeyReference reference) {
    const auto found = m_hotKeys.find(reference);
    m_grabs.release(found->second.code, found->second.grabbed);
    m_hotKeys.erase(found);
    return 0;
}

std::set<std::uint16_t> X11HotKeys::wantedGrabs(const HotKey& hotKey) const {
    std::set<std::uint16_t> states;
    for (const auto locks : m_modifierMap.lockStates())
        states.insert(static_cast<std::uint16_t>(hotKey.modifiers | locks));
    return states;
}

void X11HotKeys::followKeyboard() {
    const auto map = readModifierMap(m_connection);
    if (map == m_modifierMap)
        return;
    m_modifierMap = map;
    for (auto& [reference, hotKey] : m_hotKeys)
        m_grabs.release(hotKey.code, std::exchange(hotKey.grabbed, {}));
    grabAnew();
}

void X11HotKeys::grabAnew() {
    m_modifierMap = readModifierMap(m_connection);
    for (auto& [reference, hotKey] : m_hotKeys) {
        hotKey.modifiers = m_modifierMap.serverModifiers(hotKey.hotKeyModifiers);
        // Of what somebody else has taken by now, we keep the rest.
        hotKey.grabbed = m_grabs.grab(hotKey.code, wantedGrabs(hotKey));
    }
}

void X11HotKeys::onEvent(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7FU) != XCB_GE_GENERIC)
        return;
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension == m_connection.extensions().inputOpcode &&
        generic.event_type == XCB_INPUT_KEY_PRESS)
        onPress(reinterpret_cast<const xcb_input_key_press_event_t&>(event));
}

void X11HotKeys::onPress(const xcb_input_key_press_event_t& press) {
    if ((press.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0)
        return;
    const auto modifiers =
        m_modifierMap.withoutLocks(static_cast<std::uint16_t>(press.mods.effective));
    const auto pressed = std::ranges::find_if(m_hotKeys, [&](const auto& each) {
        return each.second.code == press.detail && each.second.modifiers == modifiers;
    });
    if (pressed != m_hotKeys.end())
        m_pressed.emit(HotKeyIdentifier(pressed->second.identifier));
}

} // namespace kestrove::x11
