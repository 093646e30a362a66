#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrove {

/// How the session chooses what to capture.
enum class FollowMode : std::uint8_t {
    /// The display under the pointer.
    mouse,
    /// The display that holds the focused application's largest window.
    focusedApp,
    /// What the user has picked.
    manual,
};

/// In the order in which views list them.
inline constexpr std::array allFollowModes{FollowMode::mouse, FollowMode::focusedApp,
                                           FollowMode::manual};

/// Whether the display is chosen without the user picking anything.
[[nodiscard]] constexpr bool isAutoFollow(FollowMode mode) {
    return mode != FollowMode::manual;
}

/// The text under which a mode is stored.
[[nodiscard]] std::string_view rawValue(FollowMode mode);

/// The mode stored as exactly this text; absent for any other text.
[[nodiscard]] std::optional<FollowMode> followModeFromRawValue(std::string_view text);

} // namespace kestrove
