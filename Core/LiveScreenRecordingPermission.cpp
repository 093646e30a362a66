#include "Core/LiveScreenRecordingPermission.h"

namespace kestrove {

LiveScreenRecordingPermission::LiveScreenRecordingPermission(ScreenRecordingAccess& access,
                                                             PermissionGuard& guard)
    : m_access(access)
    , m_guard(guard) {}

ScreenRecordingPermission LiveScreenRecordingPermission::current() {
    return m_access.preflight() ? granted() : missing();
}

ScreenRecordingPermission LiveScreenRecordingPermission::ensure() {
    if (m_access.preflight())
        return granted();
    m_hasRequested = true;
    return m_access.request() ? granted() : missing();
}

ScreenRecordingPermissionAccess LiveScreenRecordingPermission::operations() {
    return {
        .ensure = [this] { return ensure(); },
        .current = [this] { return current(); },
        .presentAlert =
            [this](ScreenRecordingPermission permission) {
                m_guard.presentPermissionAlert(permission);
            },
        .openPreferences = [this] { m_guard.openScreenRecordingPreferences(); },
    };
}

ScreenRecordingPermission LiveScreenRecordingPermission::granted() {
    m_hasBeenGranted = true;
    return ScreenRecordingPermission::granted;
}

ScreenRecordingPermission LiveScreenRecordingPermission::missing() const {
    if (m_hasBeenGranted)
        return ScreenRecordingPermission::revoked;
    return m_hasRequested ? ScreenRecordingPermission::denied
                          : ScreenRecordingPermission::notDetermined;
}

} // namespace kestrove
