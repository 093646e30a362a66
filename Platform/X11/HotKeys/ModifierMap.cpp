#include "Platform/X11/HotKeys/ModifierMap.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <span>

namespace kestrove::x11 {

namespace {

// Symbols of the keys that give modifiers their meaning, and the bits of hot-key modifiers, which
// are those of the seam.
constexpr std::initializer_list<xcb_keysym_t> altSymbols{0xffe9, 0xffea};
constexpr std::initializer_list<xcb_keysym_t> superSymbols{0xffeb, 0xffec};
constexpr std::initializer_list<xcb_keysym_t> numLockSymbols{0xff7f};
constexpr std::initializer_list<xcb_keysym_t> scrollLockSymbols{0xff14};

constexpr std::uint32_t command = 0x100;
constexpr std::uint32_t shift = 0x200;
constexpr std::uint32_t option = 0x800;
constexpr std::uint32_t control = 0x1000;

/// Only these carry a meaning by their keys; Shift, Lock and Control are what they are.
constexpr int firstFreeModifier = XCB_MAP_INDEX_1;
constexpr int modifierCount = 8;

class Keyboard {
public:
    explicit Keyboard(Connection& connection) {
        auto* const server = connection.get();
        const auto* const setup = xcb_get_setup(server);
        m_first = setup->min_keycode;
        const auto count = static_cast<std::uint8_t>(setup->max_keycode - m_first + 1);
        const auto modifiersAsked = xcb_get_modifier_mapping(server);
        const auto symbolsAsked = xcb_get_keyboard_mapping(server, m_first, count);
        m_modifiers = connection.reply(xcb_get_modifier_mapping_reply, modifiersAsked);
        m_symbols = connection.reply(xcb_get_keyboard_mapping_reply, symbolsAsked);
    }

    /// The bits of all modifiers that a key with one of these symbols carries.
    [[nodiscard]] std::uint16_t bitsOf(std::initializer_list<xcb_keysym_t> symbols) const {
        std::uint16_t bits = 0;
        if (!m_modifiers || !m_symbols)
            return bits;
        const auto* const codes = xcb_get_modifier_mapping_keycodes(m_modifiers.get());
        const int perModifier = m_modifiers->keycodes_per_modifier;
        for (int modifier = firstFreeModifier; modifier < modifierCount; ++modifier) {
            for (int key = 0; key < perModifier; ++key) {
                if (types(codes[modifier * perModifier + key], symbols))
                    bits = static_cast<std::uint16_t>(bits | 1U << static_cast<unsigned>(modifier));
            }
        }
        return bits;
    }

private:
    [[nodiscard]] bool types(xcb_keycode_t code,
                             std::initializer_list<xcb_keysym_t> symbols) const {
        if (code < m_first)
            return false;
        const std::span all(
            xcb_get_keyboard_mapping_keysyms(m_symbols.get()),
            static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(m_symbols.get())));
        const std::size_t perKey = m_symbols->keysyms_per_keycode;
        const auto from = static_cast<std::size_t>(code - m_first) * perKey;
        return from + perKey <= all.size() &&
               std::ranges::find_first_of(all.subspan(from, perKey), symbols) !=
                   all.subspan(from, perKey).end();
    }

    xcb_keycode_t m_first = 0;
    Reply<xcb_get_modifier_mapping_reply_t> m_modifiers;
    Reply<xcb_get_keyboard_mapping_reply_t> m_symbols;
};

/// A key may carry two modifiers; a grab needs one. The lowest is the one that layouts mean.
std::uint16_t lowestBit(std::uint16_t bits) {
    return static_cast<std::uint16_t>(bits & -bits);
}

} // namespace

std::uint16_t ModifierMap::serverModifiers(std::uint32_t hotKeyModifiers) const {
    const std::array<std::pair<std::uint32_t, std::uint16_t>, 4> pairs{{
        {command, super},
        {shift, XCB_MOD_MASK_SHIFT},
        {option, alt},
        {control, XCB_MOD_MASK_CONTROL},
    }};
    std::uint16_t modifiers = 0;
    for (const auto& [bit, mask] : pairs) {
        if ((hotKeyModifiers & bit) != 0)
            modifiers |= mask;
    }
    return modifiers;
}

std::set<std::uint16_t> ModifierMap::lockStates() const {
    std::set<std::uint16_t> states{0};
    for (const std::uint16_t lock : {std::uint16_t{XCB_MOD_MASK_LOCK}, numLock, scrollLock}) {
        const auto before = states;
        for (const auto state : before)
            states.insert(static_cast<std::uint16_t>(state | lock));
    }
    return states;
}

std::uint16_t ModifierMap::withoutLocks(std::uint16_t state) const {
    constexpr unsigned modifierBits = 0xFF;
    return static_cast<std::uint16_t>(state & modifierBits &
                                      ~(XCB_MOD_MASK_LOCK | numLock | scrollLock));
}

ModifierMap readModifierMap(Connection& connection) {
    const Keyboard keyboard(connection);
    ModifierMap map;
    if (const auto bits = keyboard.bitsOf(altSymbols))
        map.alt = lowestBit(bits);
    if (const auto bits = keyboard.bitsOf(superSymbols))
        map.super = lowestBit(bits);
    const auto meant = static_cast<std::uint16_t>(map.alt | map.super);
    map.numLock = lowestBit(keyboard.bitsOf(numLockSymbols) & static_cast<std::uint16_t>(~meant));
    map.scrollLock =
        lowestBit(keyboard.bitsOf(scrollLockSymbols) & static_cast<std::uint16_t>(~meant));
    return map;
}

} // namespace kestrove::x11
