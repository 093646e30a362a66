#include "Tests/X11/Application/SettingsWindow/SettingsWindowFixture.h"

#include <string>

namespace kestrove::test {
namespace {

namespace Keys = ServerKey;

constexpr auto allRegistered = "label|グローバルショートカット 4件を登録済み|";
constexpr auto notAllRegistered = "label|登録できていないショートカットがあります|";
constexpr auto earlierOnesKept =
    "label|変更は適用されていません。以前の有効なショートカットを維持しています。|";
constexpr auto recovered = "label|保存済み設定を既定のショートカットへ復旧しました|";
constexpr auto recoveryFailed = "label|既定のショートカットへの復旧に失敗しました|";
constexpr auto nothingInForce = "label|保存済み設定と既定値のどちらも完全には適用できませんでした。"
                                "各操作の状態を確認してください|";
constexpr auto storedDefaults =
    R"(kestrove.shortcutBindings={"startStop":{"keyCode":1,"modifiers":4352,"characters":"S"},)"
    R"("showPicker":{"keyCode":35,"modifiers":4352,"characters":"P"},)"
    R"("showWindow":{"keyCode":13,"modifiers":4352,"characters":"W"},)"
    R"("hideToggle":{"keyCode":4,"modifiers":4352,"characters":"H"}})";

/// The saved binding of starting and stopping; the others are the defaults.
std::string savedStartStop(std::string_view binding) {
    return "kestrove.shortcutBindings={\"startStop\":" + std::string(binding) + "}\n";
}

class SettingsWindowFailures : public SettingsWindowFixture {
protected:
    static std::string row(std::string_view status) { return "label|" + std::string(status) + "|"; }
    testing::AssertionResult tellsDefaultsInForce() {
        return tells({recorder(startStop, "⌃⌘S", applied), recorder(showPicker, "⌃⌘P", applied),
                      recorder(showWindow, "⌃⌘W", applied), recorder(hideToggle, "⌃⌘H", applied),
                      allRegistered});
    }
    testing::AssertionResult startsByControlSuper(xcb_keycode_t key) {
        focusOther();
        pressControlSuper(key);
        return shows(right, "started");
    }
};

TEST_F(SettingsWindowFailures, AKeyOfAnotherProgramIsRefusedInItsRowUntilItIsFree) {
    take(Keys::d);
    open();
    record(startStop, {Keys::control, Keys::super, Keys::d});
    EXPECT_TRUE(tells({recorder(startStop, "⌃⌘S", refused), row(refused),
                       recorder(showPicker, "⌃⌘P", applied), recorder(hideToggle, "⌃⌘H", applied),
                       notAllRegistered, earlierOnesKept},
                      {allRegistered}));
    EXPECT_EQ(stored().find("shortcutBindings"), std::string::npos);

    giveBack(Keys::d);
    record(startStop, {Keys::control, Keys::super, Keys::d});
    EXPECT_TRUE(tells({recorder(startStop, "⌃⌘D", applied), allRegistered},
                      {row(refused), notAllRegistered, earlierOnesKept}));
    EXPECT_TRUE(stores(R"("startStop":{"keyCode":2,"modifiers":4352,"characters":"d"})"));
    EXPECT_TRUE(startsByControlSuper(Keys::d));
}

TEST_F(SettingsWindowFailures, TheOldKeyWorksAfterARefusal) {
    take(Keys::d);
    open();
    record(startStop, {Keys::control, Keys::super, Keys::d});
    EXPECT_TRUE(tells({recorder(startStop, "⌃⌘S", refused)}));
    EXPECT_TRUE(startsByControlSuper(Keys::s));
}

TEST_F(SettingsWindowFailures, ADuplicateIsSaidInBothRowsAndTakenBack) {
    open();
    record(hideToggle, {Keys::control, Keys::super, Keys::s});
    EXPECT_TRUE(
        tells({recorder(startStop, "⌃⌘S", duplicated), recorder(showPicker, "⌃⌘P", applied),
               recorder(showWindow, "⌃⌘W", applied), recorder(hideToggle, "⌃⌘H", duplicated),
               row(duplicated), notAllRegistered, earlierOnesKept}));
    EXPECT_EQ(stored().find("shortcutBindings"), std::string::npos);
    record(hideToggle, {Keys::control, Keys::super, Keys::f});
    EXPECT_TRUE(tells(
        {recorder(startStop, "⌃⌘S", applied), recorder(hideToggle, "⌃⌘F", applied), allRegistered},
        {row(duplicated)}));
    EXPECT_TRUE(startsByControlSuper(Keys::s));
}

TEST_F(SettingsWindowFailures, SavedDuplicatesGiveWayToTheDefaults) {
    open(savedStartStop(R"({"keyCode":4,"modifiers":4352,"characters":"h"})"));
    EXPECT_TRUE(tellsDefaultsInForce());
    EXPECT_TRUE(tells({recovered}));
    EXPECT_TRUE(stores(storedDefaults));
    record(showPicker, {Keys::f5});
    EXPECT_TRUE(tells({recorder(showPicker, "F5", applied), allRegistered}, {recovered}));
    EXPECT_TRUE(startsByControlSuper(Keys::s));
}

TEST_F(SettingsWindowFailures, ASavedBareLetterGivesWayToTheDefaults) {
    open(savedStartStop(R"({"keyCode":1,"modifiers":0,"characters":"s"})"));
    EXPECT_TRUE(tellsDefaultsInForce());
    EXPECT_TRUE(tells({recovered}));
    EXPECT_TRUE(stores(storedDefaults));
}

TEST_F(SettingsWindowFailures, ASavedBitThatIsNoModifierTakesNoBareLetter) {
    open(savedStartStop(R"({"keyCode":1,"modifiers":1,"characters":"s"})"));
    EXPECT_TRUE(tellsDefaultsInForce());
    EXPECT_TRUE(tells({recovered}));
    EXPECT_TRUE(stores(storedDefaults));
    focusOther();
    press({Keys::s});
    EXPECT_TRUE(showsPlaceholder("it belongs to the program with the focus"));
}

TEST_F(SettingsWindowFailures, ASavedKeyThatNoKeyboardHasGivesWayToTheDefaults) {
    open(savedStartStop(R"({"keyCode":4000,"modifiers":4352,"characters":"?"})"));
    EXPECT_TRUE(tellsDefaultsInForce());
    EXPECT_TRUE(tells({recovered}));
    EXPECT_TRUE(stores(storedDefaults));
}

TEST_F(SettingsWindowFailures, ASavedKeyOfAnotherProgramGivesWayToTheDefaults) {
    take(Keys::d);
    open(savedStartStop(R"({"keyCode":2,"modifiers":4352,"characters":"d"})"));
    EXPECT_TRUE(tellsDefaultsInForce());
    EXPECT_TRUE(tells({recovered}));
    EXPECT_TRUE(stores(storedDefaults));
    EXPECT_TRUE(startsByControlSuper(Keys::s));
}

TEST_F(SettingsWindowFailures, WhatIsNoBindingIsAsIfNothingWereSaved) {
    const auto* const malformed = R"({"keyCode":"one","modifiers":4352})";
    open(savedStartStop(malformed));
    EXPECT_TRUE(tellsDefaultsInForce());
    EXPECT_TRUE(tells({}, {recovered}));
    EXPECT_NE(stored().find(malformed), std::string::npos) << "nothing was written over it";
    EXPECT_TRUE(startsByControlSuper(Keys::s));
}

TEST_F(SettingsWindowFailures, WhenTheDefaultsAreTakenTooNothingIsInForceUntilTheyAreFree) {
    take(Keys::d);
    take(Keys::h);
    const auto saved = savedStartStop(R"({"keyCode":2,"modifiers":4352,"characters":"d"})");
    open(saved);
    EXPECT_TRUE(
        tells({recorder(startStop, "⌃⌘D", notApplied), recorder(showPicker, "⌃⌘P", notApplied),
               recorder(showWindow, "⌃⌘W", notApplied), recorder(hideToggle, "⌃⌘H", refused),
               row(notApplied), row(refused), recoveryFailed, nothingInForce}));
    EXPECT_NE(stored().find(saved), std::string::npos);
    focusOther();
    pressControlSuper(Keys::s);
    EXPECT_TRUE(showsPlaceholder("no key does anything"));

    giveBack(Keys::h);
    closeOther();
    tabTo("デフォルトに戻す");
    press({Keys::space});
    EXPECT_TRUE(tellsDefaultsInForce());
    EXPECT_TRUE(tells({}, {recoveryFailed, nothingInForce}));
    EXPECT_TRUE(stores(storedDefaults));
    EXPECT_TRUE(startsByControlSuper(Keys::s));
}

} // namespace
} // namespace kestrove::test
