#include "UI/SettingsView/ShortcutStatus.h"

#include <algorithm>
#include <utility>

namespace kestrove {

namespace {

using Kind = ShortcutFailure::Kind;

std::string_view textOf(Kind failure) {
    switch (failure) {
    case Kind::eventHandler:
        return "macOSのショートカット受付を開始できません";
    case Kind::registration:
        return "macOSで登録できません。別の組み合わせを選んでください";
    case Kind::unregistration:
        return "以前のショートカットを解除できません。変更は適用されていません";
    case Kind::cleanup:
        return "失敗した変更を解除できません。表示と実際のキーが異なる可能性があります";
    case Kind::restoration:
        return "以前のショートカットを復元できません。ショートカットは未適用です";
    case Kind::invalid:
        return "保存済みショートカットが無効です";
    }
    std::unreachable();
}

StatusLine warning(std::string_view text) {
    return {text, StatusSymbol::warning, StatusColor::orange};
}

bool areAllRegistered(const ShortcutRegistryState& state) {
    return state.registeredActions.size() == allShortcutActions.size();
}

std::string_view failureSummary(const ShortcutRegistryState& state) {
    const bool isCleanupLeft = std::ranges::any_of(state.operationFailures, [](const auto& entry) {
        return entry.second.kind == Kind::cleanup;
    });
    if (isCleanupLeft)
        return "変更の後始末に失敗しました。表示と実際のキーが異なる可能性があります。";
    if (areAllRegistered(state))
        return "変更は適用されていません。以前の有効なショートカットを維持しています。";
    return "以前の設定を完全には復元できませんでした。一部のショートカットは未適用です。";
}

std::optional<std::string_view> startupNote(StartupRecoveryState state) {
    switch (state) {
    case StartupRecoveryState::ready:
        return std::nullopt;
    case StartupRecoveryState::recoveredToDefaults:
        return "保存済み設定を既定のショートカットへ復旧しました";
    case StartupRecoveryState::failed:
        return "保存済み設定と既定値のどちらも完全には適用できませんでした。各操作の状態を確認して"
               "くださ"
               "い";
    }
    std::unreachable();
}

} // namespace

ShortcutRegistryState ShortcutRegistryState::of(const GlobalShortcuts& shortcuts) {
    return {shortcuts.registeredActions().get(), shortcuts.operationFailures().get(),
            shortcuts.duplicateActions().get(), shortcuts.startupRecoveryState.get()};
}

StatusLine shortcutStatus(ShortcutAction action, const ShortcutRegistryState& state) {
    if (state.duplicateActions.contains(action))
        return warning("ほかの操作と重複しています");
    if (const auto failure = state.operationFailures.find(action);
        failure != state.operationFailures.end())
        return warning(textOf(failure->second.kind));
    if (state.registeredActions.contains(action))
        return {"適用済み", StatusSymbol::done, StatusColor::green};
    return {"未適用", StatusSymbol::none, StatusColor::secondary};
}

RegistrationStatus shortcutRegistrationStatus(const ShortcutRegistryState& state) {
    const auto note = startupNote(state.startupRecoveryState);
    if (state.startupRecoveryState == StartupRecoveryState::failed)
        return {warning("既定のショートカットへの復旧に失敗しました"), std::nullopt, note};
    if (state.duplicateActions.empty() && state.operationFailures.empty() &&
        areAllRegistered(state)) {
        return {{"グローバルショートカット 4件を登録済み", StatusSymbol::done, StatusColor::green},
                std::nullopt,
                note};
    }
    return {warning("登録できていないショートカットがあります"), failureSummary(state), note};
}

} // namespace kestrove
