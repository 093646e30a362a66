#pragma once

#include "Async/TaskScope.h"
#include "Core/GlobalShortcuts/GlobalShortcuts.h"
#include "Core/Settings/AppSettings.h"

namespace kestrove {

/// Keeps the hot keys in force in step with the bindings that the user edits: installs the saved
/// ones when it is made, the defaults where those cannot be had, and every later edit. Bindings are
/// saved only once they are in force; an edit that cannot be installed is taken back in the
/// settings, while the registry goes on saying what was wrong with it.
///
/// Thread: main. Lifetime: what it is given outlives it.
class ShortcutSettingsCoordinator {
public:
    ShortcutSettingsCoordinator(MainLoop& loop, AppSettings& settings,
                                GlobalShortcuts& globalShortcuts, ShortcutHandlers handlers);
    ShortcutSettingsCoordinator(const ShortcutSettingsCoordinator&) = delete;
    ShortcutSettingsCoordinator& operator=(const ShortcutSettingsCoordinator&) = delete;
    ~ShortcutSettingsCoordinator() = default;

private:
    void installAtStart();
    void observeEdits();
    void apply(const ShortcutBindings& bindings);
    void writeBack(const ShortcutBindings& bindings);

    AppSettings& m_settings;
    GlobalShortcuts& m_globalShortcuts;
    ShortcutHandlers m_handlers;
    /// Installed last; before anything was, the saved bindings.
    ShortcutBindings m_appliedBindings;
    bool m_isRestoring = false;
    Subscription m_edits;
    TaskScope m_tasks;
};

} // namespace kestrove
