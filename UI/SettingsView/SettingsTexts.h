#pragma once

#include "Core/GlobalShortcuts/ShortcutAction.h"
#include "Core/Settings/FollowMode.h"

#include <cstdint>
#include <string>
#include <string_view>

/// The words of the settings window, UTF-8.
namespace kestrove::SettingsTexts {

inline constexpr std::string_view windowTitle = "Kestrove 設定";

inline constexpr std::string_view followSection = "追従設定";
inline constexpr std::string_view modeTitle = "モード";
inline constexpr std::string_view followCaption =
    "手動モードでは、メニューバーからディスプレイ／ウィンドウを直接選びます。";

inline constexpr std::string_view outputSection = "出力";
inline constexpr std::string_view alwaysOnTop = "出力ウィンドウを常に最前面に表示";
inline constexpr std::string_view hideOutputWindow = "出力ウィンドウを自分のデスクトップから隠す";
inline constexpr std::string_view hideCaption =
    "有効にすると出力ウィンドウを画面外へ移動します。Meet / Zoomの共有候補と既存共有を維持できるか"
    "は現在実機確認中です。";

inline constexpr std::string_view startSection = "起動";
inline constexpr std::string_view autoStart = "アプリ起動時に自動で開始";

inline constexpr std::string_view shortcutSection = "グローバルショートカット";
inline constexpr std::string_view shortcutCaption =
    "クリックまたは Space / Return "
    "で入力を開始します。通常キーは修飾キーが必要です。F1〜F15は単独で"
    "も設定できます。Escape でキャンセルします。";
inline constexpr std::string_view resetButton = "デフォルトに戻す";

[[nodiscard]] std::string_view label(FollowMode mode);
[[nodiscard]] std::string_view label(ShortcutAction action);
/// "フレームレート: 30 fps".
[[nodiscard]] std::string frameRate(std::int64_t framesPerSecond);

} // namespace kestrove::SettingsTexts
