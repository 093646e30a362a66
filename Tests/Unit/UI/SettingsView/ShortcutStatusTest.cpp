#include "UI/SettingsView/ShortcutStatus.h"

#include <gtest/gtest.h>

#include <array>

namespace kestrove {
namespace {

using Kind = ShortcutFailure::Kind;
using State = ShortcutRegistryState;
using Recovery = StartupRecoveryState;
constexpr auto startStop = ShortcutAction::startStop;
constexpr auto hideToggle = ShortcutAction::hideToggle;
const ShortcutActions all(allShortcutActions.begin(), allShortcutActions.end());

constexpr auto warning = "exclamationmark.triangle.fill";
constexpr auto done = "checkmark.circle.fill";
constexpr auto kept = "変更は適用されていません。以前の有効なショートカットを維持しています。";
constexpr auto lost =
    "以前の設定を完全には復元できませんでした。一部のショートカットは未適用です。";
constexpr auto stuck = "変更の後始末に失敗しました。表示と実際のキーが異なる可能性があります。";
constexpr auto recoveredNote = "保存済み設定を既定のショートカットへ復旧しました";
constexpr auto failedNote = "保存済み設定と既定値のどちらも完全には適用できませんでした。"
                            "各操作の状態を確認してください";
constexpr auto someMissing = "登録できていないショートカットがあります";

TEST(ShortcutStatus, EachFailureHasItsText) {
    const std::array<std::pair<Kind, const char*>, 6> rows{{
        {Kind::eventHandler, "macOSのショートカット受付を開始できません"},
        {Kind::registration, "macOSで登録できません。別の組み合わせを選んでください"},
        {Kind::unregistration, "以前のショートカットを解除できません。変更は適用されていません"},
        {Kind::cleanup, "失敗した変更を解除できません。表示と実際のキーが異なる可能性があります"},
        {Kind::restoration, "以前のショートカットを復元できません。ショートカットは未適用です"},
        {Kind::invalid, "保存済みショートカットが無効です"},
    }};
    for (const auto& [kind, text] : rows) {
        // Registered or not: the failure comes first.
        for (const auto& registered : {ShortcutActions(), all}) {
            const State state{registered, {{startStop, {kind, -1}}}, {}, Recovery::ready};
            EXPECT_EQ(shortcutStatus(startStop, state),
                      (StatusLine{text, warning, StatusColor::orange}));
        }
    }
}

TEST(ShortcutStatus, ADuplicateComesBeforeAFailure) {
    const State state{all, {{startStop, {Kind::cleanup, -1}}}, {startStop}, Recovery::ready};
    EXPECT_EQ(shortcutStatus(startStop, state),
              (StatusLine{"ほかの操作と重複しています", warning, StatusColor::orange}));
}

TEST(ShortcutStatus, OtherwiseItIsAppliedOrNot) {
    const State state{
        {startStop}, {{ShortcutAction::showPicker, {Kind::invalid}}}, {}, Recovery::failed};
    EXPECT_EQ(shortcutStatus(startStop, state), (StatusLine{"適用済み", done, StatusColor::green}));
    EXPECT_EQ(shortcutStatus(hideToggle, state),
              (StatusLine{"未適用", "circle", StatusColor::secondary}));
}

TEST(ShortcutRegistrationStatus, HasThreeForms) {
    struct Row {
        State state;
        const char* line;
        const char* summary;
        const char* note;
    };
    const ShortcutFailures registration{{startStop, {Kind::registration, -1}}};
    const ShortcutFailures cleanup{{startStop, {Kind::registration, -1}},
                                   {hideToggle, {Kind::cleanup, -1}}};
    const ShortcutActions three{ShortcutAction::showPicker, ShortcutAction::showWindow, hideToggle};
    constexpr auto allDone = "グローバルショートカット 4件を登録済み";
    constexpr auto noDefaults = "既定のショートカットへの復旧に失敗しました";
    const std::vector<Row> rows{
        {{all, {}, {}, Recovery::ready}, allDone, nullptr, nullptr},
        {{all, {}, {}, Recovery::recoveredToDefaults}, allDone, nullptr, recoveredNote},
        {{all, {}, {}, Recovery::failed}, noDefaults, nullptr, failedNote},
        {{{}, registration, {}, Recovery::failed}, noDefaults, nullptr, failedNote},
        {{{}, {}, {}, Recovery::ready}, someMissing, lost, nullptr},
        {{all, registration, {}, Recovery::ready}, someMissing, kept, nullptr},
        {{three, registration, {}, Recovery::ready}, someMissing, lost, nullptr},
        {{all, {}, {startStop, hideToggle}, Recovery::ready}, someMissing, kept, nullptr},
        {{all, registration, {}, Recovery::recoveredToDefaults}, someMissing, kept, recoveredNote},
        {{all, cleanup, {}, Recovery::ready}, someMissing, stuck, nullptr},
        {{three, cleanup, {}, Recovery::ready}, someMissing, stuck, nullptr},
    };
    const auto optional = [](const char* text) {
        return text ? std::optional<std::string_view>(text) : std::nullopt;
    };
    for (const auto& row : rows) {
        const auto status = shortcutRegistrationStatus(row.state);
        EXPECT_EQ(status.line.text, row.line);
        EXPECT_EQ(status.line.symbol, row.line == std::string_view(allDone) ? done : warning);
        EXPECT_EQ(status.failureSummary, optional(row.summary)) << row.line;
        EXPECT_EQ(status.startupNote, optional(row.note)) << row.line;
    }
}

} // namespace
} // namespace kestrove
