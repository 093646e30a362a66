#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrove {

/// Bits of `ShortcutBinding::modifiers`: the classic hot-key modifiers. They are stored, so they
/// never change.
namespace HotKeyModifier {
inline constexpr std::uint32_t command = 0x100;
inline constexpr std::uint32_t shift = 0x200;
inline constexpr std::uint32_t option = 0x800;
inline constexpr std::uint32_t control = 0x1000;
} // namespace HotKeyModifier

/// Bits of the modifier flags that come with a key press, where they do not depend on the device.
/// Every other bit (Caps Lock, Function, the keypad) is no modifier of a shortcut.
namespace EventModifierFlag {
inline constexpr std::uint32_t capsLock = 0x10000;
inline constexpr std::uint32_t shift = 0x20000;
inline constexpr std::uint32_t control = 0x40000;
inline constexpr std::uint32_t option = 0x80000;
inline constexpr std::uint32_t command = 0x100000;
} // namespace EventModifierFlag

/// Key codes that decisions depend on. A key code names a physical key, by the numbers of the macOS
/// virtual key codes, whatever the keyboard layout makes of the key.
namespace KeyCode {
inline constexpr std::uint32_t returnKey = 36;
inline constexpr std::uint32_t tab = 48;
inline constexpr std::uint32_t space = 49;
inline constexpr std::uint32_t escape = 53;
} // namespace KeyCode

/// One global key combination: a physical key, its modifiers, and what the key typed without
/// modifiers when it was recorded, which is for display only. A plain value.
struct ShortcutBinding {
    std::uint32_t keyCode = 0;
    /// `HotKeyModifier` bits.
    std::uint32_t modifiers = 0;
    /// UTF-8, e.g. "s".
    std::string characters;

    bool operator==(const ShortcutBinding&) const = default;

    /// What the system knows a hot key by: bindings that differ in `characters` alone collide.
    struct RegistrationKey {
        std::uint32_t keyCode = 0;
        std::uint32_t modifiers = 0;

        auto operator<=>(const RegistrationKey&) const = default;
    };
    [[nodiscard]] RegistrationKey registrationKey() const { return {keyCode, modifiers}; }

    /// Whether it may be a global shortcut: a key without modifiers would be taken from all other
    /// programs, which is bearable for function keys only.
    [[nodiscard]] bool isValid() const;

    /// Modifier symbols (control, option, shift, command), then the name of the key, e.g. "⌃⌘S".
    [[nodiscard]] std::string display() const;

    /// F1 to F15. F16 to F20 are not among them.
    [[nodiscard]] static bool isFunctionKey(std::uint32_t keyCode);

    /// `HotKeyModifier` bits of a key press's modifier flags (`EventModifierFlag`).
    [[nodiscard]] static std::uint32_t carbonModifiers(std::uint32_t eventModifierFlags);

    /// The name of a key whose typed character tells nothing, e.g. "Space"; absent for others.
    [[nodiscard]] static std::optional<std::string_view> specialKeyName(std::uint32_t keyCode);
};

} // namespace kestrove
