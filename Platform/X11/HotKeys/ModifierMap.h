#pragma once

#include "Platform/X11/Connection.h"

#include <cstdint>
#include <set>

namespace kestrove::x11 {

/// Which of the server's modifier bits mean what, as the keyboard's maps say now. X fixes only
/// Shift, Lock and Control; the rest is whatever carries the keys in question.
struct ModifierMap {
    /// Every `HotKeyModifier` bit.
    static constexpr std::uint32_t allHotKeyModifiers = 0x1B00;

    std::uint16_t alt = XCB_MOD_MASK_1;
    std::uint16_t super = XCB_MOD_MASK_4;
    /// Num Lock and Scroll Lock; 0 where no bit is theirs.
    std::uint16_t numLock = 0;
    std::uint16_t scrollLock = 0;

    bool operator==(const ModifierMap&) const = default;

    /// Bits of the server for `HotKeyModifier` bits: Command is Super, Option is Alt.
    [[nodiscard]] std::uint16_t serverModifiers(std::uint32_t hotKeyModifiers) const;

    /// Every state that the locks can be in: they never make another combination of a key.
    [[nodiscard]] std::set<std::uint16_t> lockStates() const;

    /// The modifiers of an event's state, without locks, pointer buttons and layout.
    [[nodiscard]] std::uint16_t withoutLocks(std::uint16_t state) const;
};

/// Asks the server. What no key carries has its usual bit; an unreadable keyboard has all of those.
[[nodiscard]] ModifierMap readModifierMap(Connection& connection);

} // namespace kestrove::x11
