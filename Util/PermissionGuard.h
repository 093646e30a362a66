#pragma once

#include "Desktop/ScreenRecordingAccess.h"
#include "Util/ScreenRecordingPermission.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kestrove {

/// A modal alert of the warning style.
struct WarningAlert {
    std::string messageText;
    /// Its lines are separated by line breaks.
    std::string informativeText;
    /// From the first, which is the default, on.
    std::vector<std::string> buttons;
};

/// Shows an alert and returns, when the user has chosen, the index of the button. An alert that is
/// closed otherwise counts as its last button.
using RunModalAlert = std::function<std::size_t(const WarningAlert&)>;

/// What the user is told when the screen must not be recorded.
[[nodiscard]] WarningAlert permissionAlert(ScreenRecordingPermission permission);

/// Leads the user to the permission: by an alert, or straight to the page of the desktop's settings
/// where it is given.
///
/// Thread: main. `access` outlives the guard.
class PermissionGuard {
public:
    PermissionGuard(ScreenRecordingAccess& access, RunModalAlert runModal);

    /// Returns when the user has chosen; the first button opens the settings.
    void presentPermissionAlert(ScreenRecordingPermission permission);
    void openScreenRecordingPreferences();

private:
    ScreenRecordingAccess& m_access;
    RunModalAlert m_runModal;
};

} // namespace kestrove
