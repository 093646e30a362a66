#pragma once

#include "Util/ScreenRecordingPermission.h"

#include <functional>

namespace kestrove {

/// What the controller can do about the permission. All four run on the main thread.
struct ScreenRecordingPermissionAccess {
    /// Checks, and if needed asks the platform.
    std::function<ScreenRecordingPermission()> ensure;
    /// Checks without asking.
    std::function<ScreenRecordingPermission()> current;
    /// Tells the user what to do; returns when the user has chosen.
    std::function<void(ScreenRecordingPermission)> presentAlert;
    /// Opens the screen-recording page of the system's settings.
    std::function<void()> openPreferences;
};

} // namespace kestrove
