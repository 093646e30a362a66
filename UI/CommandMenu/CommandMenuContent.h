#pragma once

#include "UI/MenuBarView/MenuContent.h"
#include "UI/MenuBarView/MenuState.h"

#include <optional>
#include <vector>

namespace kestrove {

/// One line of the command menu; absent for a divider.
using CommandMenuEntry = std::optional<MenuButton>;

/// The command menu from top to bottom, as values. `bound` is how the shortcuts are shown that are
/// in force now, whatever the user wants them to be.
[[nodiscard]] std::vector<CommandMenuEntry> commandMenuContent(const MenuState& state,
                                                               const MenuShortcutTexts& bound);

} // namespace kestrove
