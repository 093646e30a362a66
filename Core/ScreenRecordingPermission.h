#pragma once

#include <functional>

namespace kestrove {

enum class ScreenRecordingPermission {
    /// Not granted now; this process has never asked and never seen it granted.
    notDetermined,
    granted,
    /// Not granted now; this process asked, was refused, and has never seen it granted.
    denied,
    /// Not granted now, although this process saw it granted earlier in this run.
    revoked,
};

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
