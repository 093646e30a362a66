// What is stored, and the hot keys.
#include "Tests/Simulation/Checkers/Checkers.h"
#include "Tests/Simulation/Checkers/Names.h"

#include <fmt/format.h>

namespace kestrove::simulation {

std::optional<Failure> Checkers::checkStored() const {
    SimulatedUserDefaults defaults(m_desktop);
    const AppSettings stored(defaults);
    const auto& live = m_program.settings();
    const bool same = stored.followMode.get() == live.followMode.get() &&
                      stored.targetFPS.get() == live.targetFPS.get() &&
                      stored.alwaysOnTop.get() == live.alwaysOnTop.get() &&
                      stored.hideOutputWindow.get() == live.hideOutputWindow.get() &&
                      stored.manualSources.get() == live.manualSources.get() &&
                      stored.shortcutBindings.get() == live.shortcutBindings.get() &&
                      stored.manualWindowSelections() == live.manualWindowSelections();
    if (!same)
        return Failure{"what is stored is what is in memory", ""};
    return {};
}

/// What was wrong with an edit stays told until the user edits again.
void Checkers::shortcutFailuresChange(const ShortcutFailures& failures) {
    const auto edits = m_program.shortcutEditCount();
    if (failures.empty() && !m_program.globalShortcuts().operationFailures().get().empty() &&
        edits == m_editsAtFailure)
        noteMeanwhile("a failure of a shortcut is not forgotten", "");
    m_editsAtFailure = edits;
}

/// An action that had a hot key has one afterwards, or it is told that it could not be put back.
void Checkers::registeredActionsChange(const ShortcutActions& actions) {
    const auto& shortcuts = m_program.globalShortcuts();
    const auto& failures = shortcuts.operationFailures().get();
    for (const auto action : shortcuts.registeredActions().get()) {
        const auto failure = failures.find(action);
        const bool isTold =
            failure != failures.end() && failure->second.kind == ShortcutFailure::Kind::restoration;
        if (!actions.contains(action) && !isTold)
            noteMeanwhile("what was in force is put back", std::string(rawValue(action)));
    }
}

std::optional<Failure> Checkers::checkHotKeys() const {
    auto& shortcuts = m_program.globalShortcuts();
    const auto registered = m_desktop.keyboard().registered();
    const auto& actions = shortcuts.registeredActions().get();
    const auto& failures = shortcuts.operationFailures().get();
    if (registered.size() != actions.size())
        return Failure{"registered hot keys are what the registry says",
                       fmt::format("{} of {}", registered.size(), actions.size())};
    for (const auto action : actions) {
        const auto binding = shortcuts.registeredBinding(action);
        if (!binding ||
            !contains(registered, SimulatedKeyCombination{binding->keyCode, binding->modifiers}))
            return Failure{"a registered action has the hot key of the registry",
                           std::string(rawValue(action))};
    }
    const auto& bindings = m_program.settings().shortcutBindings.get();
    for (const auto& [action, binding] : bindings) {
        const SimulatedKeyCombination wanted{binding.keyCode, binding.modifiers};
        const bool isRegistered = contains(registered, wanted);
        // One that the system would not give up stays in force, and is put back when a later edit
        // fails for another reason.
        const auto inForce = shortcuts.registeredBinding(action);
        const bool wasStuck =
            inForce && m_desktop.keyboard().wasStuck({inForce->keyCode, inForce->modifiers});
        if (actions.contains(action) && !failures.contains(action) && !isRegistered && !wasStuck)
            return Failure{"a registered action has the hot key that is shown",
                           std::string(rawValue(action))};
        const bool isAllWell = failures.empty() && shortcuts.duplicateActions().get().empty();
        if (isAllWell && !actions.contains(action))
            return Failure{"an action without a hot key has a failure",
                           std::string(rawValue(action))};
    }
    return {};
}

/// When nothing is in the way and the user has just recorded them.
std::optional<Failure> Checkers::checkHotKeysWork() const {
    const auto& shortcuts = m_program.globalShortcuts();
    if (!shortcuts.operationFailures().get().empty() ||
        !shortcuts.duplicateActions().get().empty() ||
        shortcuts.registeredActions().get().size() != allShortcutActions.size())
        return Failure{"shortcuts that can work do", ""};
    return {};
}

} // namespace kestrove::simulation
