#include "Platform/X11/HotKeys/PhysicalKeys.h"

#include <algorithm>
#include <array>

namespace kestrove::x11 {

namespace {

// One row a key, so that a wrong one is seen.
// clang-format off
constexpr auto keys = std::to_array<PhysicalKey>({
    {0, 30}, // A
    {1, 31}, // S
    {2, 32}, // D
    {3, 33}, // F
    {4, 35}, // H
    {5, 34}, // G
    {6, 44}, // Z
    {7, 45}, // X
    {8, 46}, // C
    {9, 47}, // V
    {10, 86}, // the key between left Shift and Z of European keyboards
    {11, 48}, // B
    {12, 16}, // Q
    {13, 17}, // W
    {14, 18}, // E
    {15, 19}, // R
    {16, 21}, // Y
    {17, 20}, // T
    {18, 2}, // 1
    {19, 3}, // 2
    {20, 4}, // 3
    {21, 5}, // 4
    {22, 7}, // 6
    {23, 6}, // 5
    {24, 13}, // =
    {25, 10}, // 9
    {26, 8}, // 7
    {27, 12}, // -
    {28, 9}, // 8
    {29, 11}, // 0
    {30, 27}, // ]
    {31, 24}, // O
    {32, 22}, // U
    {33, 26}, // [
    {34, 23}, // I
    {35, 25}, // P
    {36, 28}, // Return
    {37, 38}, // L
    {38, 36}, // J
    {39, 40}, // '
    {40, 37}, // K
    {41, 39}, // semicolon
    {42, 43}, // the backslash
    {43, 51}, // comma
    {44, 53}, // /
    {45, 49}, // N
    {46, 50}, // M
    {47, 52}, // .
    {48, 15}, // Tab
    {49, 57}, // Space
    {50, 41}, // `
    {51, 14}, // Backspace
    {53, 1}, // Escape
    {64, 187}, // F17
    {65, 83}, // keypad .
    {67, 55}, // keypad *
    {69, 78}, // keypad +
    {72, 115}, // volume up
    {73, 114}, // volume down
    {74, 113}, // mute
    {75, 98}, // keypad /
    {76, 96}, // keypad Enter
    {78, 74}, // keypad -
    {79, 188}, // F18
    {80, 189}, // F19
    {81, 117}, // keypad =
    {82, 82}, // keypad 0
    {83, 79}, // keypad 1
    {84, 80}, // keypad 2
    {85, 81}, // keypad 3
    {86, 75}, // keypad 4
    {87, 76}, // keypad 5
    {88, 77}, // keypad 6
    {89, 71}, // keypad 7
    {90, 190}, // F20
    {91, 72}, // keypad 8
    {92, 73}, // keypad 9
    {93, 124}, // ¥ of Japanese keyboards
    {94, 89}, // the key left of their right Shift
    {95, 121}, // keypad comma
    {96, 63}, // F5
    {97, 64}, // F6
    {98, 65}, // F7
    {99, 61}, // F3
    {100, 66}, // F8
    {101, 67}, // F9
    {102, 94}, // left of a Japanese Space
    {103, 87}, // F11
    {104, 92}, // right of a Japanese Space
    {105, 183}, // F13
    {106, 186}, // F16
    {107, 184}, // F14
    {109, 68}, // F10
    {110, 127}, // menu
    {111, 88}, // F12
    {113, 185}, // F15
    {114, 110}, // Insert, where a Mac has Help
    {115, 102}, // Home
    {116, 104}, // Page Up
    {117, 111}, // Delete
    {118, 62}, // F4
    {119, 107}, // End
    {120, 60}, // F2
    {121, 109}, // Page Down
    {122, 59}, // F1
    {123, 105}, // left
    {124, 106}, // right
    {125, 108}, // down
    {126, 103}, // up
});
// clang-format on

} // namespace

std::span<const PhysicalKey> physicalKeys() {
    return keys;
}

std::optional<xcb_keycode_t> serverCodeOf(std::uint32_t keyCode) {
    const auto* const found = std::ranges::lower_bound(keys, keyCode, {}, &PhysicalKey::keyCode);
    if (found == keys.end() || found->keyCode != keyCode)
        return std::nullopt;
    return found->serverCode();
}

std::optional<std::uint32_t> keyCodeOf(std::uint32_t serverCode) {
    const auto* const found = std::ranges::find(keys, serverCode, &PhysicalKey::serverCode);
    return found == keys.end() ? std::nullopt : std::optional(found->keyCode);
}

} // namespace kestrove::x11
