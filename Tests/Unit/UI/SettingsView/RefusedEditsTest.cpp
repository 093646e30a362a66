#include "Tests/Unit/UI/SettingsView/SettingsWindowFixture.h"

#include <map>
#include <ostream>
#include <set>
#include <utility>

namespace kestrove {
namespace {

/// An edit of two shortcuts at a time, of which the keyboard refuses some calls.
struct RefusedEdit {
    using Operation = ScriptedKeyboard::Operation;

    std::string name;
    /// The calls that fail, each as the how manieth of its kind since the edit, from 1.
    std::set<std::pair<Operation, int>> failing;
    std::string firstRow;
    std::string lastRow;
    std::string block;
    /// What the edit gives both beside their keys.
    std::uint32_t modifiers = 0x1100;
};

void PrintTo(const RefusedEdit& edit, std::ostream* out) {
    *out << edit.name;
}

class RefusedEdits : public SettingsWindowTest, public testing::WithParamInterface<RefusedEdit> {};

constexpr auto kept = "変更は適用されていません。以前の有効なショートカットを維持しています。";
constexpr auto lost =
    "以前の設定を完全には復元できませんでした。一部のショートカットは未適用です。";
constexpr auto stuck = "変更の後始末に失敗しました。表示と実際のキーが異なる可能性があります。";
constexpr auto refused = "macOSで登録できません。別の組み合わせを選んでください";

INSTANTIATE_TEST_SUITE_P(
    Of, RefusedEdits,
    testing::Values(
        RefusedEdit{"Handler",
                    {{RefusedEdit::Operation::install, 1}},
                    "macOSのショートカット受付を開始できません",
                    "macOSのショートカット受付を開始できません",
                    kept},
        RefusedEdit{
            "Registration", {{RefusedEdit::Operation::registering, 2}}, "適用済み", refused, kept},
        RefusedEdit{"Unregistration",
                    {{RefusedEdit::Operation::unregistering, 1}},
                    "以前のショートカットを解除できません。変更は適用されていません",
                    "適用済み",
                    kept},
        RefusedEdit{
            "Cleanup",
            {{RefusedEdit::Operation::registering, 2}, {RefusedEdit::Operation::unregistering, 3}},
            "失敗した変更を解除できません。表示と実際のキーが異なる可能性があります",
            refused,
            stuck},
        RefusedEdit{
            "Restoration",
            {{RefusedEdit::Operation::registering, 2}, {RefusedEdit::Operation::registering, 3}},
            "以前のショートカットを復元できません。ショートカットは未適用です",
            refused,
            lost},
        RefusedEdit{"Keys",
                    {},
                    "保存済みショートカットが無効です",
                    "保存済みショートカットが無効です",
                    kept,
                    0}),
    [](const auto& tested) { return tested.param.name; });

TEST_P(RefusedEdits, SayWhyInTheirRowsAndWhatIsInForce) {
    open();
    std::map<RefusedEdit::Operation, int> calls;
    keyboard.statusOf = [&](int, RefusedEdit::Operation operation) -> HotKeyStatus {
        return GetParam().failing.contains({operation, ++calls[operation]}) ? -1 : 0;
    };
    auto edited = settings->shortcutBindings.get();
    edited[ShortcutAction::startStop] = {2, GetParam().modifiers, "d"};
    edited[ShortcutAction::hideToggle] = {3, GetParam().modifiers, "f"};
    settings->shortcutBindings.set(edited);
    settle();
    EXPECT_EQ(recorder(0).accessibleValue().toStdString(), "⌃⌘S、" + GetParam().firstRow);
    EXPECT_EQ(recorder(3).accessibleValue().toStdString(), "⌃⌘H、" + GetParam().lastRow);
    EXPECT_TRUE(shows(GetParam().firstRow));
    EXPECT_TRUE(shows(GetParam().lastRow));
    EXPECT_TRUE(shows("登録できていないショートカットがあります"));
    EXPECT_TRUE(shows(GetParam().block));
    EXPECT_EQ(settings->shortcutBindings.get(), defaultShortcutBindings());
    EXPECT_TRUE(defaults.dataText(shortcutsKey).empty());
}

} // namespace
} // namespace kestrove
