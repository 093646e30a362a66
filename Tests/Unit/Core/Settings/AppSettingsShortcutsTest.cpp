#include "Core/Settings/AppSettings.h"
#include "Tests/Support/ScriptedDesktop/MemoryUserDefaults.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

constexpr auto key = "kestrove.shortcutBindings";

ShortcutBindings loaded(std::string_view stored) {
    MemoryUserDefaults defaults;
    defaults.putData(key, stored);
    auto bindings = AppSettings(defaults).shortcutBindings.get();
    EXPECT_EQ(defaults.dataText(key), stored) << "what is bad stays until the next write";
    return bindings;
}

TEST(AppSettingsShortcuts, AreTheDefaultsWhenNothingIsStored) {
    MemoryUserDefaults defaults;
    EXPECT_EQ(AppSettings(defaults).shortcutBindings.get(), defaultShortcutBindings());
    defaults.values[key] = std::string("{}");
    EXPECT_EQ(AppSettings(defaults).shortcutBindings.get(), defaultShortcutBindings());
}

TEST(AppSettingsShortcuts, AreTheStoredOnesOverTheDefaults) {
    auto expected = defaultShortcutBindings();
    expected[ShortcutAction::showPicker] = {3, 256, "f"};
    EXPECT_EQ(loaded(R"({"showPicker":{"keyCode":3,"modifiers":256,"characters":"f"},)"
                     R"("showpicker":{"keyCode":9,"modifiers":256,"characters":"x"}})"),
              expected);
}

TEST(AppSettingsShortcuts, AreTheDefaultsWhenOneIsMalformed) {
    for (const auto* const text :
         {"", "[]", "null",
          R"({"showPicker":{"keyCode":3,"modifiers":256,"characters":"f"},)"
          R"("startStop":{"keyCode":3,"modifiers":256}})"})
        EXPECT_EQ(loaded(text), defaultShortcutBindings()) << text;
}

TEST(AppSettingsShortcuts, AreTakenWithoutJudgingThem) {
    auto expected = defaultShortcutBindings();
    expected[ShortcutAction::startStop] = {1, 0, "s"};
    expected[ShortcutAction::hideToggle] = {35, 0x1100, "P"};
    EXPECT_EQ(loaded(R"({"startStop":{"keyCode":1,"modifiers":0,"characters":"s"},)"
                     R"("hideToggle":{"keyCode":35,"modifiers":4352,"characters":"P"}})"),
              expected);
}

TEST(AppSettingsShortcuts, AreStoredOnRequestOnly) {
    MemoryUserDefaults defaults;
    AppSettings settings(defaults);
    settings.shortcutBindings.set({{ShortcutAction::startStop, {2, 256, "d"}}});
    EXPECT_TRUE(defaults.values.empty());
    settings.persistShortcutBindings({{ShortcutAction::showWindow, {13, 2048, "w"}}});
    EXPECT_EQ(defaults.dataText(key),
              R"({"showWindow":{"keyCode":13,"modifiers":2048,"characters":"w"}})");
}

TEST(AppSettingsShortcuts, ThatCannotBeEncodedLeaveWhatIsStored) {
    MemoryUserDefaults defaults;
    defaults.putData(key, "{}");
    const AppSettings settings(defaults);
    settings.persistShortcutBindings({{ShortcutAction::showWindow, {13, 2048, "\xff"}}});
    EXPECT_EQ(defaults.dataText(key), "{}");
}

} // namespace
} // namespace kestrove
