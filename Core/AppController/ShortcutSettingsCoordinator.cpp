#include "Core/AppController/ShortcutSettingsCoordinator.h"

#include <utility>

namespace kestrove {

ShortcutSettingsCoordinator::ShortcutSettingsCoordinator(MainLoop& loop, AppSettings& settings,
                                                         GlobalShortcuts& globalShortcuts,
                                                         ShortcutHandlers handlers)
    : m_settings(settings)
    , m_globalShortcuts(globalShortcuts)
    , m_handlers(std::move(handlers))
    , m_appliedBindings(settings.shortcutBindings.get())
    , m_tasks(loop) {
    installAtStart();
    // Only now: the defaults that were written into the settings are no edit.
    observeEdits();
}

void ShortcutSettingsCoordinator::installAtStart() {
    auto& recovery = m_globalShortcuts.startupRecoveryState;
    if (m_globalShortcuts.install(m_handlers, m_appliedBindings)) {
        recovery.set(StartupRecoveryState::ready);
        return;
    }
    const auto& defaults = GlobalShortcuts::defaultBindings();
    if (!m_globalShortcuts.install(m_handlers, defaults)) {
        recovery.set(StartupRecoveryState::failed);
        return;
    }
    m_appliedBindings = defaults;
    m_settings.shortcutBindings.set(defaults);
    m_settings.persistShortcutBindings(defaults);
    recovery.set(StartupRecoveryState::recoveredToDefaults);
}

void ShortcutSettingsCoordinator::observeEdits() {
    m_edits = m_settings.shortcutBindings.subscribe(
        [this, last = m_settings.shortcutBindings.get()](const ShortcutBindings& edited) mutable {
            if (edited == last)
                return;
            last = edited;
            apply(edited);
        });
}

void ShortcutSettingsCoordinator::apply(const ShortcutBindings& bindings) {
    if (m_isRestoring)
        return;
    if (m_globalShortcuts.install(m_handlers, bindings)) {
        m_appliedBindings = bindings;
        m_settings.persistShortcutBindings(bindings);
        m_globalShortcuts.startupRecoveryState.set(StartupRecoveryState::ready);
        return;
    }
    // Later, not inside the announcement of the edit, which is stored after it.
    m_tasks.post([this, inForce = m_appliedBindings] { writeBack(inForce); });
}

void ShortcutSettingsCoordinator::writeBack(const ShortcutBindings& bindings) {
    m_isRestoring = true;
    m_settings.shortcutBindings.set(bindings);
    m_isRestoring = false;
}

} // namespace kestrove
