#include "Core/AppController/ShortcutSettingsCoordinator.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Tests/Support/ScriptedDesktop/MemoryUserDefaults.h"
#include "Tests/Unit/Core/GlobalShortcuts/GlobalShortcutsFixture.h"

#include <optional>

namespace kestrove {
namespace {

using Calls = std::vector<std::string>;
using Kind = ShortcutFailure::Kind;
constexpr auto key = "kestrove.shortcutBindings";
constexpr auto defaultsText = R"({"startStop":{"keyCode":1,"modifiers":4352,"characters":"S"},)"
                              R"("showPicker":{"keyCode":35,"modifiers":4352,"characters":"P"},)"
                              R"("showWindow":{"keyCode":13,"modifiers":4352,"characters":"W"},)"
                              R"("hideToggle":{"keyCode":4,"modifiers":4352,"characters":"H"}})";
constexpr auto duplicatedText = R"({"startStop":{"keyCode":4,"modifiers":4352,"characters":"h"}})";

class ShortcutSettingsCoordinatorTest : public testing::Test, protected ShortcutsBench {
protected:
    void create() {
        settings.emplace(defaults);
        coordinator.emplace(loop, *settings, shortcuts, handlers());
        keyboard.calls.clear();
    }
    /// The defaults with another key for one action.
    static ShortcutBindings edited(ShortcutAction action, ShortcutBinding binding) {
        auto bindings = defaultShortcutBindings();
        bindings[action] = std::move(binding);
        return bindings;
    }
    [[nodiscard]] StartupRecoveryState state() const {
        return shortcuts.startupRecoveryState.get();
    }
    [[nodiscard]] const ShortcutBindings& wanted() const {
        return settings->shortcutBindings.get();
    }
    void refuseRegistrations() {
        keyboard.statusOf = [](int, auto operation) {
            return operation == ScriptedKeyboard::Operation::registering ? -9878 : 0;
        };
    }

    SimulatedMainLoop loop;
    MemoryUserDefaults defaults;
    std::optional<AppSettings> settings;
    std::optional<ShortcutSettingsCoordinator> coordinator;
};

TEST_F(ShortcutSettingsCoordinatorTest, InstallsWhatIsSavedAndSavesNothing) {
    defaults.putData(key, R"({"showPicker":{"keyCode":3,"modifiers":256,"characters":"f"}})");
    create();
    EXPECT_EQ(state(), StartupRecoveryState::ready);
    EXPECT_TRUE(defaults.writes.take().empty());
    EXPECT_TRUE(keyboard.press({3, 256}));
    EXPECT_TRUE(keyboard.press({1, controlCommand}));
    EXPECT_EQ(ran, (Calls{"showPicker", "startStop"}));
}

TEST_F(ShortcutSettingsCoordinatorTest, FallsBackToTheDefaultsAndSavesThem) {
    for (const std::string saved :
         {duplicatedText, R"({"hideToggle":{"keyCode":4,"modifiers":0,"characters":"h"}})"}) {
        defaults.putData(key, saved);
        create();
        EXPECT_EQ(state(), StartupRecoveryState::recoveredToDefaults);
        EXPECT_EQ(wanted(), defaultShortcutBindings());
        EXPECT_EQ(defaults.dataText(key), defaultsText);
        EXPECT_EQ(shortcuts.registeredActions().get(), everyAction);
        EXPECT_TRUE(shortcuts.duplicateActions().get().empty());
        EXPECT_TRUE(shortcuts.operationFailures().get().empty());
        loop.runUntilIdle();
        EXPECT_TRUE(keyboard.calls.take().empty()) << "the defaults are no edit";
        coordinator.reset();
    }
}

TEST_F(ShortcutSettingsCoordinatorTest, FallsBackWhenASavedKeyIsTaken) {
    defaults.putData(key, R"({"showPicker":{"keyCode":3,"modifiers":256,"characters":"f"}})");
    fail({{2, -9878}});
    create();
    EXPECT_EQ(state(), StartupRecoveryState::recoveredToDefaults);
    EXPECT_EQ(wanted(), defaultShortcutBindings());
    EXPECT_TRUE(keyboard.press({35, controlCommand}));
    EXPECT_EQ(ran, Calls{"showPicker"});
}

TEST_F(ShortcutSettingsCoordinatorTest, KeepsWhatIsSavedWhenTheDefaultsFailToo) {
    defaults.putData(key, duplicatedText);
    refuseRegistrations();
    create();
    loop.runUntilIdle();
    EXPECT_EQ(state(), StartupRecoveryState::failed);
    EXPECT_EQ(wanted(), edited(ShortcutAction::startStop, {4, controlCommand, "h"}));
    EXPECT_TRUE(defaults.writes.take().empty());
    // Of the second attempt: the first one failed by its duplicates.
    EXPECT_TRUE(shortcuts.duplicateActions().get().empty());
    EXPECT_EQ(shortcuts.operationFailures().get().size(), 4U);
    EXPECT_TRUE(shortcuts.registeredActions().get().empty());
}

TEST_F(ShortcutSettingsCoordinatorTest, AnEditIsInForceBeforeItIsSaved) {
    create();
    const auto bindings = edited(ShortcutAction::startStop, {2, controlCommand, "d"});
    settings->shortcutBindings.set(bindings);
    EXPECT_TRUE(keyboard.press({2, controlCommand}));
    EXPECT_EQ(defaults.writes.take(), Calls{key});
    EXPECT_TRUE(defaults.dataText(key).starts_with(
        R"({"startStop":{"keyCode":2,"modifiers":4352,"characters":"d"},)"));
    EXPECT_EQ(wanted(), bindings);
}

TEST_F(ShortcutSettingsCoordinatorTest, OtherCharactersAreSavedToo) {
    create();
    settings->shortcutBindings.set(edited(ShortcutAction::startStop, {1, controlCommand, "s"}));
    EXPECT_EQ(keyboard.calls.take(), Calls{"install handler"});
    EXPECT_EQ(defaults.writes.take(), Calls{key});
}

TEST_F(ShortcutSettingsCoordinatorTest, AnEqualValueInstallsNothing) {
    create();
    settings->shortcutBindings.set(defaultShortcutBindings());
    EXPECT_TRUE(keyboard.calls.take().empty());
    EXPECT_TRUE(defaults.writes.take().empty());
}

TEST_F(ShortcutSettingsCoordinatorTest, ADuplicateIsTakenBackInALaterTurn) {
    create();
    const auto bindings = edited(ShortcutAction::startStop, {4, controlCommand, "h"});
    settings->shortcutBindings.set(bindings);
    EXPECT_EQ(wanted(), bindings) << "not inside the announcement";
    loop.runUntilIdle();
    EXPECT_EQ(wanted(), defaultShortcutBindings());
    EXPECT_TRUE(keyboard.calls.take().empty());
    EXPECT_TRUE(defaults.writes.take().empty());
    EXPECT_EQ(shortcuts.duplicateActions().get(),
              (ShortcutActions{ShortcutAction::startStop, ShortcutAction::hideToggle}));
    EXPECT_EQ(state(), StartupRecoveryState::ready);
    // The same edit once more is a new one.
    settings->shortcutBindings.set(bindings);
    EXPECT_EQ(wanted(), bindings);
    loop.runUntilIdle();
    EXPECT_EQ(wanted(), defaultShortcutBindings());
}

TEST_F(ShortcutSettingsCoordinatorTest, ARefusedKeyIsTakenBackAndItsFailureStays) {
    create();
    settings->shortcutBindings.set(edited(ShortcutAction::showPicker, {3, 256, "f"}));
    loop.runUntilIdle();
    defaults.writes.clear();
    fail({{2, -9878}});
    auto bindings = wanted();
    bindings[ShortcutAction::startStop] = {2, controlCommand, "d"};
    settings->shortcutBindings.set(bindings);
    loop.runUntilIdle();
    EXPECT_EQ(wanted(), edited(ShortcutAction::showPicker, {3, 256, "f"}));
    EXPECT_TRUE(defaults.writes.take().empty());
    EXPECT_EQ(shortcuts.operationFailures().get(),
              (ShortcutFailures{{ShortcutAction::startStop, {Kind::registration, -9878}}}));
    EXPECT_EQ(shortcuts.registeredActions().get(), everyAction);
}

TEST_F(ShortcutSettingsCoordinatorTest, ARefusedEditIsTakenBackToWhatWasInForceThen) {
    create();
    settings->shortcutBindings.set(
        edited(ShortcutAction::startStop, {4, controlCommand, "h"})); // taken by hideToggle
    const auto later = edited(ShortcutAction::startStop, {3, controlCommand, "f"});
    settings->shortcutBindings.set(later);
    EXPECT_EQ(wanted(), later);
    loop.runUntilIdle();
    EXPECT_EQ(wanted(), GlobalShortcuts::defaultBindings());
    EXPECT_TRUE(keyboard.press({3, controlCommand}));
}

TEST_F(ShortcutSettingsCoordinatorTest, ASuccessfulEditEndsTheNoteOfTheRecovery) {
    defaults.putData(key, duplicatedText);
    create();
    settings->shortcutBindings.set(edited(ShortcutAction::startStop, {4, controlCommand, "h"}));
    loop.runUntilIdle();
    EXPECT_EQ(state(), StartupRecoveryState::recoveredToDefaults) << "a failed edit leaves it";
    settings->shortcutBindings.set(edited(ShortcutAction::startStop, {2, controlCommand, "d"}));
    EXPECT_EQ(state(), StartupRecoveryState::ready);
}

TEST_F(ShortcutSettingsCoordinatorTest, TheDefaultsCanBeHadAfterAFailedStart) {
    defaults.putData(key, duplicatedText);
    refuseRegistrations();
    create();
    keyboard.statusOf = nullptr;
    settings->shortcutBindings.set(GlobalShortcuts::defaultBindings());
    EXPECT_EQ(state(), StartupRecoveryState::ready);
    EXPECT_EQ(defaults.dataText(key), defaultsText);
    EXPECT_EQ(shortcuts.registeredActions().get(), everyAction);
}

TEST_F(ShortcutSettingsCoordinatorTest, TakesNothingBackOnceItHasGone) {
    create();
    const auto bindings = edited(ShortcutAction::startStop, {4, controlCommand, "h"});
    settings->shortcutBindings.set(bindings);
    coordinator.reset();
    loop.runUntilIdle();
    EXPECT_EQ(wanted(), bindings);
    settings->shortcutBindings.set(defaultShortcutBindings());
    EXPECT_TRUE(keyboard.calls.take().empty());
}

} // namespace
} // namespace kestrove
