#pragma once

#include "Async/Published.h"
#include "Core/CaptureSource/CaptureSource.h"
#include "Core/GlobalShortcuts/ShortcutAction.h"
#include "Core/Settings/FollowMode.h"
#include "Desktop/UserDefaults.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace kestrove {

/// The owner of each window that the user picked, by window identifier.
using ManualWindowSelections = std::map<WindowID, ManualWindowSelection>;

/// The user's choices: read from the user defaults once, at construction, and written back one by
/// one whenever they change. Values that are missing, of a wrong type or corrupt fall back to their
/// default, each key by itself, and nothing is reported.
///
/// The application object owns the one instance and hands it to whoever needs it. It is no global:
/// every user says in its constructor that it depends on the settings, and a test gives it its own.
///
/// Thread: main. Lifetime: the user defaults outlive it.
class AppSettings {
public:
    explicit AppSettings(UserDefaults& userDefaults);
    AppSettings(const AppSettings&) = delete;
    AppSettings& operator=(const AppSettings&) = delete;
    ~AppSettings() = default;

private:
    // The first member: the published values below are loaded from it and persist into it.
    UserDefaults& m_defaults;

public:
    /// `mouse` by default.
    Published<FollowMode> followMode;
    /// Frames a second asked of the capture engine; 30 by default, and for a stored 0. Any other
    /// number is taken as it is: only the settings window keeps to a range.
    Published<std::int64_t> targetFPS;
    /// Keeps the output window above other windows; off by default.
    Published<bool> alwaysOnTop;
    /// Starts sharing as soon as the application has started; off by default.
    Published<bool> autoStart;
    /// Hides the output window from the user's own desktop; off by default.
    Published<bool> hideOutputWindow;
    /// What the user picked for `FollowMode::manual`, in the order of picking. Setting it drops the
    /// selections of windows that are in it no more, and persists both.
    Published<std::vector<CaptureSource>> manualSources;
    /// The shortcuts that the user wants; always holds every action. Setting it stores nothing:
    /// bindings are saved by `persistShortcutBindings`, once they are known to work.
    Published<ShortcutBindings> shortcutBindings;

    /// Every key is a window of `manualSources`, except that what was loaded is kept as it was
    /// until `manualSources` is set. A window without an entry has no known owner.
    [[nodiscard]] const ManualWindowSelections& manualWindowSelections() const {
        return m_manualWindowSelections;
    }

    /// Takes `source` out of the manual sources, or appends it together with its selection.
    void toggleManualSource(CaptureSource source,
                            std::optional<ManualWindowSelection> windowSelection = std::nullopt);

    void removeManualSources(const std::vector<CaptureSource>& sources);

    /// Forgets every picked window and keeps the displays: window numbers do not survive a restart.
    void discardPersistedManualWindowsForNewProcess();

    /// Writes the manual sources and their selections as they are.
    void persistManualSources() const;

    /// Saves `bindings`, whatever `shortcutBindings` holds. Only who installs them calls this.
    void persistShortcutBindings(const ShortcutBindings& bindings) const;

private:
    void manualSourcesDidChange();

    ManualWindowSelections m_manualWindowSelections;
};

} // namespace kestrove
