#pragma once

#include "Core/ScreenRecordingPermission.h"
#include "Desktop/ScreenRecordingAccess.h"
#include "Util/PermissionGuard.h"

namespace kestrove {

/// Tells the four states of the screen-recording permission apart by what this run has seen of it.
/// One object a process: the desktop itself does not say whether it was asked before, or whether a
/// permission that is missing was there a moment ago.
///
/// What it has seen is never stored and never forgotten: once the permission was granted, every
/// failed check reports it as revoked until the program is started anew.
///
/// Thread: main. `access` and `guard` outlive it.
class LiveScreenRecordingPermission {
public:
    LiveScreenRecordingPermission(ScreenRecordingAccess& access, PermissionGuard& guard);
    LiveScreenRecordingPermission(const LiveScreenRecordingPermission&) = delete;
    LiveScreenRecordingPermission& operator=(const LiveScreenRecordingPermission&) = delete;
    ~LiveScreenRecordingPermission() = default;

    /// Checks without asking.
    [[nodiscard]] ScreenRecordingPermission current();
    /// Checks, and asks the desktop when the permission is not there; that may show a prompt.
    [[nodiscard]] ScreenRecordingPermission ensure();

    /// The operations as the controller takes them. They must not outlive this object.
    [[nodiscard]] ScreenRecordingPermissionAccess operations();

private:
    [[nodiscard]] ScreenRecordingPermission granted();
    [[nodiscard]] ScreenRecordingPermission missing() const;

    ScreenRecordingAccess& m_access;
    PermissionGuard& m_guard;
    bool m_hasBeenGranted = false;
    bool m_hasRequested = false;
};

} // namespace kestrove
