#include "Core/GlobalShortcuts/ShortcutAction.h"

#include <algorithm>
#include <utility>

namespace kestrove {

std::string_view rawValue(ShortcutAction action) {
    switch (action) {
    case ShortcutAction::startStop:
        return "startStop";
    case ShortcutAction::showPicker:
        return "showPicker";
    case ShortcutAction::showWindow:
        return "showWindow";
    case ShortcutAction::hideToggle:
        return "hideToggle";
    }
    std::unreachable();
}

std::optional<ShortcutAction> shortcutActionFromRawValue(std::string_view text) {
    const auto* const found = std::ranges::find(allShortcutActions, text, rawValue);
    return found == allShortcutActions.end() ? std::nullopt : std::optional(*found);
}

const ShortcutBindings& defaultShortcutBindings() {
    constexpr auto controlCommand = HotKeyModifier::control | HotKeyModifier::command;
    static const ShortcutBindings bindings{
        {ShortcutAction::startStop, {1, controlCommand, "S"}},
        {ShortcutAction::showPicker, {35, controlCommand, "P"}},
        {ShortcutAction::showWindow, {13, controlCommand, "W"}},
        {ShortcutAction::hideToggle, {4, controlCommand, "H"}},
    };
    return bindings;
}

} // namespace kestrove
