#include "UI/MenuBarView/MenuState.h"

#include <string_view>
#include <utility>

#include <fmt/core.h>

namespace kestrove {

namespace {

MenuButton button(MenuCommand command, std::string_view title) {
    return {.command = command, .title = std::string(title)};
}

MenuButton button(MenuCommand command, std::string_view title,
                  const std::optional<std::string>& shortcut) {
    return {.command = command, .title = std::string(title), .shortcut = shortcut};
}

MenuButton button(MenuCommand command, std::string_view title, const char* help) {
    return {.command = command, .title = std::string(title), .help = help};
}

std::optional<MenuRecoverySection> recoverySection(const MenuState& state) {
    if (!state.recoveryGuidance)
        return std::nullopt;
    auto openPreferences = button(MenuCommand::openScreenRecordingPreferences, "設定を開く",
                                  "システム設定の画面収録権限を開きます");
    openPreferences.isEnabled = state.offers.hasScreenRecordingPreferences;
    return MenuRecoverySection{
        .symbol = "exclamationmark.triangle.fill",
        .guidance = *state.recoveryGuidance,
        .retry = button(MenuCommand::start, "再試行", "画面収録権限と共有ソースを再確認します"),
        .openPreferences = std::move(openPreferences)};
}

MenuButton sessionButton(const MenuState& state) {
    // On its way to the end it can neither be stopped again nor started yet.
    const bool isStopping = state.session == CaptureSessionState::stopping();
    if (!state.session.isActive() && !isStopping)
        return button(MenuCommand::start, "開始");
    auto stop = button(MenuCommand::stop, "停止");
    stop.isEnabled = !isStopping;
    return stop;
}

MenuFollowModeRow followModeRow(const MenuState& state, FollowMode mode, std::string_view title) {
    const bool isCurrent = state.picks.followMode == mode;
    return {.mode = mode,
            .title = std::string(title),
            .symbol = isCurrent ? "largecircle.fill.circle" : "circle",
            .isCurrent = isCurrent};
}

MenuSourceRow sourceRow(const MenuState& state, const CaptureSourceInfo& info) {
    const bool isSelected = state.picks.isManuallySelected(info.source);
    return {.source = info.source,
            .windowOwner = info.windowOwner,
            .title = info.title,
            .subtitle = info.subtitle,
            .symbol = isSelected ? "checkmark.square.fill" : "square",
            .isSelected = isSelected,
            .isLive = state.isLive(info.source),
            .isEnabled = state.picks.canToggle(info)};
}

MenuSourceGroup sourceGroup(const MenuState& state, const std::vector<CaptureSourceInfo>& infos,
                            std::string header, std::string_view emptyText) {
    MenuSourceGroup group{.header = std::move(header), .rows = {}, .emptyText = std::nullopt};
    for (const auto& info : infos)
        group.rows.push_back(sourceRow(state, info));
    if (infos.empty())
        group.emptyText = emptyText;
    return group;
}

MenuSourcesSection sourcesSection(const MenuState& state) {
    const auto& [displays, windows] = state.availableSources;
    std::optional<std::string> note;
    if (!state.unavailableManualSources.empty()) {
        note = "確認できない選択候補は保持しています。"
               "終了済みならチェックを外してください。";
    }
    return {.title = "共有するソース",
            .note = std::move(note),
            .followModes = {followModeRow(state, FollowMode::mouse, "マウス位置（自動追従）"),
                            followModeRow(state, FollowMode::focusedApp,
                                          "フォーカス中のアプリ（自動追従）")},
            .displays = sourceGroup(
                state, displays,
                fmt::format("ディスプレイ {} 件（複数選択時はアクティブに切替）", displays.size()),
                "利用可能なディスプレイがありません"),
            .windows = sourceGroup(
                state, windows, fmt::format("ウィンドウ {}", windows.size()),
                "利用可能なウィンドウがありません。「ソース一覧を更新」を押してください"),
            .refresh = button(MenuCommand::refreshSources, "ソース一覧を更新")};
}

std::vector<MenuButton> hideOrShowButton(const MenuState& state) {
    const auto& shortcuts = state.shortcuts;
    if (state.hideOutputWindow) {
        return {button(MenuCommand::leaveHiddenMode, "出力ウィンドウを表示（非表示モード解除）",
                       shortcuts.hideToggle)};
    }
    return {
        button(MenuCommand::showOutputWindow, "出力ウィンドウを表示", shortcuts.showWindow),
        button(MenuCommand::hideOutputWindow, "出力ウィンドウを隠す", shortcuts.hideToggle),
    };
}

} // namespace

std::string MenuButton::label() const {
    return shortcut ? title + "  " + *shortcut : title;
}

bool MenuState::isLive(CaptureSource source) const {
    return activeSource == source;
}

MenuContent menuContent(const MenuState& state) {
    MenuContent content{
        .header = {"kestrove", std::string(state.session.statusMessage())},
        .recovery = recoverySection(state),
        .session = sessionButton(state),
        .picker = std::nullopt,
        .sources = sourcesSection(state),
        .outputWindow = hideOrShowButton(state),
        .settings = std::nullopt,
        .privacyPolicy = button(MenuCommand::openPrivacyPolicy, "プライバシーポリシー",
                                "Webブラウザでプライバシーポリシーを開きます"),
        .quit = button(MenuCommand::quit, "Kestrove を終了"),
    };
    content.quit.keyEquivalent = "⌘Q";
    if (state.offers.hasPicker) {
        content.picker = button(MenuCommand::showSourcePicker, "プレビューから選ぶ…",
                                state.shortcuts.showPicker);
    }
    if (state.offers.hasSettings) {
        content.settings = button(MenuCommand::openSettings, "設定・ショートカット…");
        content.settings->symbol = "gearshape";
    }
    return content;
}

} // namespace kestrove
