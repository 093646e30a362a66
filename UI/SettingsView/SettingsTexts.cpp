#include "UI/SettingsView/SettingsTexts.h"

#include <fmt/format.h>

#include <utility>

namespace kestrove::SettingsTexts {

std::string_view label(FollowMode mode) {
    switch (mode) {
    case FollowMode::mouse:
        return "マウス位置（自動追従）";
    case FollowMode::focusedApp:
        return "フォーカス中のアプリ（自動追従）";
    case FollowMode::manual:
        return "手動で選択";
    }
    std::unreachable();
}

std::string_view label(ShortcutAction action) {
    switch (action) {
    case ShortcutAction::startStop:
        return "画面共有 開始 / 停止";
    case ShortcutAction::showPicker:
        return "プレビューから選ぶ";
    case ShortcutAction::showWindow:
        return "出力ウィンドウを表示";
    case ShortcutAction::hideToggle:
        return "出力ウィンドウの非表示モードをトグル";
    }
    std::unreachable();
}

std::string frameRate(std::int64_t framesPerSecond) {
    return fmt::format("フレームレート: {} fps", framesPerSecond);
}

} // namespace kestrove::SettingsTexts
