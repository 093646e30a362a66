#include "Tests/Unit/Core/GlobalShortcuts/GlobalShortcutsFixture.h"

#include <limits>
#include <optional>

namespace kestrove {
namespace {

using Calls = std::vector<std::string>;
using Kind = ShortcutFailure::Kind;
using Failures = ShortcutFailures;
constexpr auto startStop = ShortcutAction::startStop;
constexpr auto showPicker = ShortcutAction::showPicker;
constexpr auto showWindow = ShortcutAction::showWindow;
constexpr auto hideToggle = ShortcutAction::hideToggle;

class GlobalShortcutsTest : public testing::Test, protected ShortcutsBench {
protected:
    ShortcutBindings defaultsBut(const ShortcutBindings& others) {
        auto bindings = others;
        bindings.merge(ShortcutBindings(defaultShortcutBindings()));
        return bindings;
    }
};

TEST_F(GlobalShortcutsTest, BeginsWithNothing) {
    EXPECT_TRUE(shortcuts.registeredActions().get().empty());
    EXPECT_TRUE(shortcuts.operationFailures().get().empty());
    EXPECT_TRUE(shortcuts.duplicateActions().get().empty());
    EXPECT_EQ(shortcuts.startupRecoveryState.get(), StartupRecoveryState::ready);
    EXPECT_TRUE(keyboard.calls.take().empty());
}

TEST_F(GlobalShortcutsTest, InstallsAWholeSetInTheOrderOfTheActions) {
    EXPECT_TRUE(install(GlobalShortcuts::defaultBindings()));
    EXPECT_EQ(keyboard.calls.take(),
              (Calls{"install handler", "register 1: 1+0x1100", "register 2: 35+0x1100",
                     "register 3: 13+0x1100", "register 4: 4+0x1100"}));
    EXPECT_EQ(shortcuts.registeredActions().get(), everyAction);
}

TEST_F(GlobalShortcutsTest, APressRunsItsActionOnly) {
    installDefaults();
    EXPECT_TRUE(keyboard.press({13, controlCommand}));
    EXPECT_TRUE(keyboard.press({1, controlCommand}));
    EXPECT_EQ(ran, (Calls{"showWindow", "startStop"}));
    shortcuts.deliver(99);
    EXPECT_EQ(ran.size(), 2U);
}

TEST_F(GlobalShortcutsTest, AnIdentifierOfARemovedRegistrationDoesNothing) {
    installDefaults();
    ASSERT_TRUE(install(defaultsBut({{startStop, {2, controlCommand, "d"}}})));
    shortcuts.deliver(1);
    EXPECT_TRUE(ran.empty());
    shortcuts.deliver(5);
    EXPECT_EQ(ran, Calls{"startStop"});
}

TEST_F(GlobalShortcutsTest, APressThatComesLateFindsNobody) {
    std::optional<GlobalShortcuts> registry;
    registry.emplace(std::make_unique<ScriptedHotKeyRegistrar>(keyboard), log, "");
    ASSERT_TRUE(registry->install(handlers(), defaultShortcutBindings()));
    registry.reset();
    keyboard.delivery(1);
    EXPECT_TRUE(ran.empty());
    EXPECT_EQ(keyboard.live.size(), 4U) << "the end of the process gives them back";
}

TEST_F(GlobalShortcutsTest, AHandlerMayInstallAnew) {
    auto made = handlers();
    made[startStop] = [this] {
        EXPECT_TRUE(install(defaultsBut({{startStop, {2, controlCommand, "d"}}})));
        ran.emplace_back("changed");
    };
    ASSERT_TRUE(shortcuts.install(made, defaultShortcutBindings()));
    EXPECT_TRUE(keyboard.press({1, controlCommand}));
    EXPECT_EQ(ran, Calls{"changed"});
}

TEST_F(GlobalShortcutsTest, TheSameBindingsAgainAskNothingOfTheSystem) {
    installDefaults();
    EXPECT_TRUE(install(defaultShortcutBindings()));
    EXPECT_EQ(keyboard.calls.take(), Calls{"install handler"});
}

TEST_F(GlobalShortcutsTest, OtherCharactersAndHandlersAskNothingOfTheSystem) {
    installDefaults();
    EXPECT_TRUE(
        shortcuts.install(handlers(" anew"), defaultsBut({{startStop, {1, controlCommand, "s"}}})));
    EXPECT_EQ(keyboard.calls.take(), Calls{"install handler"});
    EXPECT_TRUE(keyboard.press({35, controlCommand}));
    EXPECT_EQ(ran, Calls{"showPicker anew"});
}

TEST_F(GlobalShortcutsTest, OnlyWhatChangesIsUnregisteredAndRegistered) {
    installDefaults();
    EXPECT_TRUE(install(
        defaultsBut({{showPicker, {35, 0x900, "p"}}, {hideToggle, {5, controlCommand, "g"}}})));
    EXPECT_EQ(keyboard.calls.take(), (Calls{"install handler", "unregister 2", "unregister 4",
                                            "register 5: 35+0x900", "register 6: 5+0x1100"}));
}

TEST_F(GlobalShortcutsTest, TwoActionsMayExchangeTheirKeys) {
    installDefaults();
    EXPECT_TRUE(install(defaultsBut(
        {{startStop, {35, controlCommand, "p"}}, {showPicker, {1, controlCommand, "s"}}})));
    EXPECT_TRUE(keyboard.press({35, controlCommand}));
    EXPECT_EQ(ran, Calls{"startStop"});
}

TEST_F(GlobalShortcutsTest, DuplicatesAreFoundByKeyAndModifiers) {
    EXPECT_TRUE(GlobalShortcuts::duplicates(defaultShortcutBindings()).empty());
    EXPECT_TRUE(GlobalShortcuts::duplicates({}).empty());
    EXPECT_EQ(GlobalShortcuts::duplicates(defaultsBut({{hideToggle, {1, controlCommand, "s"}}})),
              (ShortcutActions{startStop, hideToggle}));
    EXPECT_EQ(GlobalShortcuts::duplicates({{startStop, {1, 256, "a"}},
                                           {showPicker, {2, 256, "b"}},
                                           {showWindow, {1, 256, "c"}},
                                           {hideToggle, {2, 256, "b"}}}),
              everyAction);
    EXPECT_TRUE(GlobalShortcuts::duplicates(defaultsBut({{hideToggle, {1, 0x100, "S"}}})).empty());
}

TEST_F(GlobalShortcutsTest, DuplicatesTouchNothing) {
    installDefaults();
    fail({{0, -1}});
    ASSERT_FALSE(install(defaultsBut({{startStop, {2, controlCommand, "d"}}})));
    keyboard.statusOf = nullptr;
    ASSERT_FALSE(shortcuts.operationFailures().get().empty());
    keyboard.calls.clear();
    EXPECT_FALSE(install(defaultsBut({{hideToggle, {1, controlCommand, "s"}}})));
    EXPECT_TRUE(keyboard.calls.take().empty());
    EXPECT_EQ(shortcuts.duplicateActions().get(), (ShortcutActions{startStop, hideToggle}));
    EXPECT_TRUE(shortcuts.operationFailures().get().empty()) << "of the earlier attempt";
    EXPECT_EQ(shortcuts.registeredActions().get(), everyAction);
    EXPECT_TRUE(keyboard.press({4, controlCommand}));
    EXPECT_EQ(ran, Calls{"hideToggle"});
}

TEST_F(GlobalShortcutsTest, WhatIsInvalidTouchesNothing) {
    installDefaults();
    EXPECT_FALSE(install(defaultsBut({{showWindow, {1, 0, "s"}}})));
    EXPECT_EQ(shortcuts.operationFailures().get(), (Failures{{showWindow, {Kind::invalid}}}));
    auto incomplete = defaultShortcutBindings();
    incomplete.erase(startStop);
    auto someHandlers = handlers();
    someHandlers.erase(hideToggle);
    EXPECT_FALSE(shortcuts.install(someHandlers, incomplete));
    EXPECT_EQ(shortcuts.operationFailures().get(),
              (Failures{{startStop, {Kind::invalid}}, {hideToggle, {Kind::invalid}}}));
    EXPECT_TRUE(shortcuts.duplicateActions().get().empty());
    EXPECT_TRUE(keyboard.calls.take().empty());
    EXPECT_EQ(shortcuts.registeredActions().get(), everyAction);
}

TEST_F(GlobalShortcutsTest, WithoutAnEventHandlerNothingIsRegistered) {
    fail({{0, -9870}});
    EXPECT_FALSE(install(defaultShortcutBindings()));
    const ShortcutFailure failure{Kind::eventHandler, -9870};
    EXPECT_EQ(shortcuts.operationFailures().get(), (Failures{{startStop, failure},
                                                             {showPicker, failure},
                                                             {showWindow, failure},
                                                             {hideToggle, failure}}));
    EXPECT_EQ(keyboard.calls.take(), Calls{"install handler"});
    EXPECT_TRUE(log.lines.empty()) << "the registrar's line";
}

TEST_F(GlobalShortcutsTest, ARefusedKeyBringsTheOldOneBackUnderItsIdentifier) {
    installDefaults();
    fail({{2, -9878}});
    EXPECT_FALSE(install(defaultsBut({{startStop, {2, controlCommand, "d"}}})));
    EXPECT_EQ(keyboard.calls.take(), (Calls{"install handler", "unregister 1",
                                            "register 5: 2+0x1100", "register 1: 1+0x1100"}));
    EXPECT_EQ(shortcuts.operationFailures().get(),
              (Failures{{startStop, {Kind::registration, -9878}}}));
    EXPECT_EQ(shortcuts.registeredActions().get(), everyAction);
    EXPECT_EQ(logLines(),
              Calls{"[kestrove] RegisterEventHotKey failed for startStop (⌃⌘D), status=-9878"});
    EXPECT_TRUE(keyboard.press({1, controlCommand}));
    EXPECT_EQ(ran, Calls{"startStop"});
    // The refused key has used up its identifier.
    keyboard.calls.clear();
    EXPECT_TRUE(install(defaultsBut({{startStop, {3, controlCommand, "f"}}})));
    EXPECT_EQ(keyboard.calls.take().back(), "register 6: 3+0x1100");
}

TEST_F(GlobalShortcutsTest, ARefusedKeyTakesTheOthersOfTheSameEditBack) {
    installDefaults();
    fail({{5, -9878}});
    EXPECT_FALSE(install(defaultsBut({{startStop, {2, controlCommand, "d"}},
                                      {showPicker, {3, controlCommand, "f"}},
                                      {showWindow, {5, controlCommand, "g"}}})));
    EXPECT_EQ(keyboard.calls.take(),
              (Calls{"install handler", "unregister 1", "unregister 2", "unregister 3",
                     "register 5: 2+0x1100", "register 6: 3+0x1100", "register 7: 5+0x1100",
                     "unregister 5", "unregister 7", "register 1: 1+0x1100",
                     "register 2: 35+0x1100", "register 3: 13+0x1100"}));
    EXPECT_EQ(shortcuts.operationFailures().get(),
              (Failures{{showPicker, {Kind::registration, -9878}}}));
}

TEST_F(GlobalShortcutsTest, AnOldKeyThatStaysKeepsAllOldKeys) {
    installDefaults();
    fail({{2, -3}});
    EXPECT_FALSE(install(defaultsBut({{startStop, {2, controlCommand, "d"}},
                                      {showPicker, {3, controlCommand, "f"}},
                                      {showWindow, {5, controlCommand, "g"}}})));
    EXPECT_EQ(keyboard.calls.take(),
              (Calls{"install handler", "unregister 1", "unregister 2", "unregister 3",
                     "register 1: 1+0x1100", "register 3: 13+0x1100"}));
    EXPECT_EQ(shortcuts.operationFailures().get(),
              (Failures{{showPicker, {Kind::unregistration, -3}}}));
    EXPECT_EQ(shortcuts.registeredActions().get(), everyAction);
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(GlobalShortcutsTest, AFreshKeyThatStaysIsInForce) {
    installDefaults();
    fail({{4, -9878}, {5, -4}});
    EXPECT_FALSE(install(defaultsBut(
        {{startStop, {2, controlCommand, "d"}}, {showPicker, {3, controlCommand, "f"}}})));
    EXPECT_EQ(keyboard.calls.take(),
              (Calls{"install handler", "unregister 1", "unregister 2", "register 5: 2+0x1100",
                     "register 6: 3+0x1100", "unregister 5", "register 2: 35+0x1100"}));
    EXPECT_EQ(
        shortcuts.operationFailures().get(),
        (Failures{{startStop, {Kind::cleanup, -4}}, {showPicker, {Kind::registration, -9878}}}));
    EXPECT_EQ(shortcuts.registeredActions().get(), everyAction);
    EXPECT_TRUE(keyboard.press({2, controlCommand}));
    EXPECT_EQ(ran, Calls{"startStop"});
    EXPECT_FALSE(keyboard.press({1, controlCommand}));
}

TEST_F(GlobalShortcutsTest, AnOldKeyThatCannotBeHadAgainLeavesItsActionWithout) {
    installDefaults();
    fail({{2, -9878}, {3, -9879}});
    EXPECT_FALSE(install(defaultsBut({{showWindow, {2, controlCommand, "d"}}})));
    EXPECT_EQ(shortcuts.operationFailures().get(),
              (Failures{{showWindow, {Kind::restoration, -9879}}}));
    EXPECT_EQ(shortcuts.registeredActions().get(),
              (ShortcutActions{startStop, showPicker, hideToggle}));
    EXPECT_EQ(logLines(),
              (Calls{"[kestrove] RegisterEventHotKey failed for showWindow (⌃⌘D), status=-9878",
                     "[kestrove] failed to restore previous shortcut for showWindow, "
                     "status=-9879"}));
    for (const auto& line : log.lines) {
        EXPECT_EQ(line.subsystem, "dev.kestrove");
        EXPECT_EQ(line.category, "");
    }
    // The next edit gets it one again.
    EXPECT_TRUE(install(defaultShortcutBindings()));
    EXPECT_EQ(shortcuts.registeredActions().get(), everyAction);
    EXPECT_TRUE(shortcuts.operationFailures().get().empty());
}

TEST_F(GlobalShortcutsTest, PublishesDuplicatesThenFailuresThenWhatIsRegistered) {
    Calls published;
    const auto duplicates = shortcuts.duplicateActions().subscribe([&](const auto& actions) {
        published.push_back("duplicates " + std::to_string(actions.size()));
    });
    const auto failures = shortcuts.operationFailures().subscribe(
        [&](const auto& map) { published.push_back("failures " + std::to_string(map.size())); });
    const auto registered = shortcuts.registeredActions().subscribe([&](const auto& actions) {
        published.push_back("registered " + std::to_string(actions.size()));
    });
    const auto publishedBy = [&](const ShortcutBindings& bindings) {
        published.clear();
        (void)install(bindings);
        return published;
    };
    EXPECT_EQ(publishedBy(defaultShortcutBindings()),
              (Calls{"duplicates 0", "failures 0", "registered 4"}));
    EXPECT_EQ(publishedBy(defaultsBut({{startStop, {4, controlCommand, "h"}}})),
              (Calls{"duplicates 2", "failures 0"}));
    EXPECT_EQ(publishedBy({}), (Calls{"duplicates 0", "failures 4"}));
    fail({{2, -1}});
    EXPECT_EQ(publishedBy(defaultsBut({{startStop, {2, controlCommand, "d"}}})),
              (Calls{"duplicates 0", "failures 1", "registered 4"}));
    fail({{0, -1}});
    EXPECT_EQ(publishedBy(defaultShortcutBindings()), (Calls{"duplicates 0", "failures 4"}));
}

TEST_F(GlobalShortcutsTest, TellsTheBindingInForceAndNotTheOneWishedFor) {
    EXPECT_EQ(shortcuts.registeredBinding(startStop), std::nullopt);
    ASSERT_TRUE(install(defaultShortcutBindings()));
    const auto inForce = defaultShortcutBindings().at(startStop);
    EXPECT_EQ(shortcuts.registeredBinding(startStop), inForce);
    EXPECT_FALSE(install(defaultsBut({{startStop, {4, controlCommand, "h"}}})));
    EXPECT_EQ(shortcuts.registeredBinding(startStop), inForce);
    ASSERT_TRUE(install(defaultsBut({{startStop, {2, controlCommand, "d"}}})));
    EXPECT_EQ(shortcuts.registeredBinding(startStop), (ShortcutBinding{2, controlCommand, "d"}));
}

TEST_F(GlobalShortcutsTest, IdentifiersEndInsteadOfBeginningAnew) {
    constexpr auto last = std::numeric_limits<std::uint32_t>::max();
    const auto installWithFirst = [this](std::uint32_t firstID) {
        ScriptedKeyboard keys;
        GlobalShortcuts registry(std::make_unique<ScriptedHotKeyRegistrar>(keys), log, "", firstID);
        return registry.install(handlers(), defaultShortcutBindings());
    };
    EXPECT_TRUE(installWithFirst(last - 4));
    EXPECT_DEATH((void)installWithFirst(last - 3), "");
}

} // namespace
} // namespace kestrove
