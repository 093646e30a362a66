#include "UI/CommandMenu/CommandMenuContent.h"

#include <string>
#include <utility>

namespace kestrove {

namespace {

using Shortcut = std::optional<std::string>;

MenuButton sessionButton(const CaptureSessionState& session, const Shortcut& shortcut) {
    // On its way to the end it can neither be stopped again nor started yet.
    const bool isStopping = session == CaptureSessionState::stopping();
    if (!session.isActive() && !isStopping)
        return {.command = MenuCommand::start, .title = "画面共有を開始", .shortcut = shortcut};
    return {.command = MenuCommand::stop,
            .title = "画面共有を停止",
            .shortcut = shortcut,
            .isEnabled = !isStopping};
}

MenuButton pickerButton(const CaptureSessionState& session, const Shortcut& shortcut) {
    // Without the permission there is nothing to preview.
    return {.command = MenuCommand::showSourcePicker,
            .title = "プレビューから選ぶ…",
            .shortcut = shortcut,
            .isEnabled = !session.permission()};
}

MenuButton showButton(bool isHidden, const Shortcut& shortcut) {
    // In the hidden mode, showing alone would bring nothing into sight.
    return {.command = isHidden ? MenuCommand::leaveHiddenMode : MenuCommand::showOutputWindow,
            .title = "出力ウィンドウを表示",
            .shortcut = shortcut};
}

MenuButton hiddenModeButton(bool isHidden, const Shortcut& shortcut) {
    if (isHidden) {
        return {.command = MenuCommand::leaveHiddenMode,
                .title = "出力ウィンドウの非表示を解除",
                .shortcut = shortcut};
    }
    return {.command = MenuCommand::hideOutputWindow,
            .title = "出力ウィンドウを隠す",
            .shortcut = shortcut};
}

} // namespace

std::vector<CommandMenuEntry> commandMenuContent(const MenuState& state,
                                                 const MenuShortcutTexts& bound) {
    std::vector<CommandMenuEntry> entries{sessionButton(state.session, bound.startStop)};
    if (state.offers.hasPicker)
        entries.emplace_back(pickerButton(state.session, bound.showPicker));
    entries.emplace_back(std::nullopt);
    entries.emplace_back(showButton(state.hideOutputWindow, bound.showWindow));
    entries.emplace_back(hiddenModeButton(state.hideOutputWindow, bound.hideToggle));
    return entries;
}

} // namespace kestrove
