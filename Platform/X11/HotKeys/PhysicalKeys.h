#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// One key of a keyboard, by its place, under the numbers that it has in different worlds.
struct PhysicalKey {
    /// Key code of hot keys: the macOS virtual key code.
    std::uint32_t keyCode;
    /// Key code of Linux input devices (evdev).
    std::uint16_t inputCode;

    /// Key code of X servers on Linux, which leave the first eight numbers free.
    [[nodiscard]] constexpr xcb_keycode_t serverCode() const {
        return static_cast<xcb_keycode_t>(inputCode + 8);
    }
};

/// Every key that a hot key can be on, ascending by `keyCode`: neither modifiers nor locks. What
/// a layout makes of a key plays no part. Thread: any.
[[nodiscard]] std::span<const PhysicalKey> physicalKeys();

[[nodiscard]] std::optional<xcb_keycode_t> serverCodeOf(std::uint32_t keyCode);
[[nodiscard]] std::optional<std::uint32_t> keyCodeOf(std::uint32_t serverCode);

} // namespace kestrove::x11
