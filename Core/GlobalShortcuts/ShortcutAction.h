#pragma once

#include "Core/GlobalShortcuts/ShortcutBinding.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string_view>

namespace kestrove {

/// What a global shortcut does.
enum class ShortcutAction : std::uint8_t {
    /// Starts sharing, or ends it.
    startStop,
    /// Opens the picker with previews.
    showPicker,
    /// Brings the output window onto the user's desktop.
    showWindow,
    /// Hides the output window from the user's desktop, or shows it there again.
    hideToggle,
};

/// In the order in which everything goes through them.
inline constexpr std::array allShortcutActions{
    ShortcutAction::startStop, ShortcutAction::showPicker, ShortcutAction::showWindow,
    ShortcutAction::hideToggle};

using ShortcutActions = std::set<ShortcutAction>;
using ShortcutBindings = std::map<ShortcutAction, ShortcutBinding>;

/// The text under which an action is stored; also its name in log lines.
[[nodiscard]] std::string_view rawValue(ShortcutAction action);

/// The action stored as exactly this text; absent for any other text.
[[nodiscard]] std::optional<ShortcutAction> shortcutActionFromRawValue(std::string_view text);

/// Control and Command with S, P, W and H. Made on first use; holds every action.
[[nodiscard]] const ShortcutBindings& defaultShortcutBindings();

} // namespace kestrove
