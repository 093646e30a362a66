#include "Tests/Unit/Core/GlobalShortcuts/GlobalShortcutsFixture.h"

#include <array>
#include <optional>
#include <random>

namespace kestrove {
namespace {

using Kind = ShortcutFailure::Kind;
using Key = ShortcutBinding::RegistrationKey;
using KeysByAction = std::map<ShortcutAction, Key>;

/// What the system runs for each action: found by pressing all that is registered, not by asking
/// the registry.
KeysByAction inForce(ShortcutsBench& bench) {
    KeysByAction keys;
    for (const auto& [id, key] : bench.keyboard.live) {
        bench.ran.clear();
        bench.keyboard.delivery(id);
        EXPECT_EQ(bench.ran.size(), 1U) << "a live hot key without its handler";
        if (bench.ran.size() != 1)
            continue;
        const auto action = shortcutActionFromRawValue(bench.ran.front());
        EXPECT_TRUE(keys.emplace(action.value(), key).second) << "two hot keys of one action";
    }
    return keys;
}

std::optional<Key> keyOf(const KeysByAction& keys, ShortcutAction action) {
    const auto found = keys.find(action);
    return found == keys.end() ? std::nullopt : std::optional(found->second);
}

/// Checks one failure against what is in force. Its kind says what happened to the action.
void expectFailureTells(const ShortcutFailure& failure, std::optional<Key> before, Key wanted,
                        std::optional<Key> after) {
    switch (failure.kind) {
    case Kind::cleanup:
        EXPECT_EQ(after, wanted);
        return;
    case Kind::restoration:
        EXPECT_EQ(after, std::nullopt);
        return;
    case Kind::registration:
    case Kind::unregistration:
    case Kind::eventHandler:
    case Kind::invalid:
        EXPECT_EQ(after, before);
        return;
    }
}

/// Installs `wanted` and compares what is published with what is registered then.
void installAndCheck(ShortcutsBench& bench, const ShortcutBindings& wanted) {
    const auto before = inForce(bench);
    const bool installed = bench.install(wanted);
    const auto& failures = bench.shortcuts.operationFailures().get();
    const auto& duplicates = bench.shortcuts.duplicateActions().get();
    const auto after = inForce(bench);

    ShortcutActions registered;
    for (const auto& [action, key] : after)
        registered.insert(action);
    EXPECT_EQ(bench.shortcuts.registeredActions().get(), registered);
    EXPECT_EQ(installed, failures.empty() && duplicates.empty());
    for (const auto action : allShortcutActions) {
        const auto wantedKey = wanted.at(action).registrationKey();
        const auto failure = failures.find(action);
        const auto was = keyOf(before, action);
        const auto is = keyOf(after, action);
        if (installed)
            EXPECT_EQ(is, wantedKey);
        else if (failure != failures.end())
            expectFailureTells(failure->second, was, wantedKey, is);
        else
            EXPECT_EQ(is, was) << "a deviation that nothing tells of: " << rawValue(action);
    }
}

const ShortcutBindings allOthers{{ShortcutAction::startStop, {2, controlCommand, "d"}},
                                 {ShortcutAction::showPicker, {3, controlCommand, "f"}},
                                 {ShortcutAction::showWindow, {1, controlCommand, "s"}},
                                 {ShortcutAction::hideToggle, {122, 0, ""}}};

TEST(GlobalShortcutsFaults, EverySetOfFailingCallsOfOneChange) {
    // The handler, four keys out, four keys in, and up to four of putting back what was.
    constexpr int calls = 13;
    for (int failing = 0; failing < 1 << calls; ++failing) {
        ShortcutsBench bench;
        bench.installDefaults();
        bench.keyboard.statusOf = [failing, from = bench.keyboard.callCount](int number, auto) {
            const int position = number - from;
            return position < calls && (failing >> position & 1) != 0 ? -100 - position : 0;
        };
        installAndCheck(bench, allOthers);
        if (testing::Test::HasFailure())
            FAIL() << "failing calls, as bits: " << failing;
    }
}

TEST(GlobalShortcutsFaults, AnyHistoryOfEditsAndFailures) {
    constexpr std::array<Key, 7> keys{{{1, controlCommand},
                                       {35, controlCommand},
                                       {13, 0x900},
                                       {4, 0x300},
                                       {122, 0},
                                       {96, 0x200},
                                       {1, 0}}};
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        std::mt19937 random(seed);
        ShortcutsBench bench;
        for (int edit = 0; edit < 12; ++edit) {
            ShortcutBindings wanted;
            for (const auto action : allShortcutActions) {
                const auto& key = keys[random() % keys.size()];
                wanted[action] = {key.keyCode, key.modifiers, random() % 2 == 0 ? "x" : "X"};
            }
            const auto oneIn = std::array<std::uint32_t, 4>{2, 4, 12, 1000}[random() % 4];
            bench.keyboard.statusOf = [&random, oneIn](int, auto) {
                return random() % oneIn == 0 ? -9878 : 0;
            };
            installAndCheck(bench, wanted);
            if (testing::Test::HasFailure())
                FAIL() << "seed " << seed << ", edit " << edit;
        }
    }
}

} // namespace
} // namespace kestrove
