#include "Util/PermissionGuard.h"

#include <utility>

namespace kestrove {

namespace {

constexpr std::size_t openSettingsButton = 0;

} // namespace

WarningAlert permissionAlert(ScreenRecordingPermission permission) {
    return {permission == ScreenRecordingPermission::revoked ? "画面収録の許可が取り消されました"
                                                             : "画面収録の許可が必要です",
            "kestrove は画面を取り込んで共有ウィンドウとして表示します。\n"
            "「システム設定 > プライバシーとセキュリティ > 画面収録」で kestrove "
            "を有効にしてください。",
            {"設定を開く", "後で"}};
}

PermissionGuard::PermissionGuard(ScreenRecordingAccess& access, RunModalAlert runModal)
    : m_access(access)
    , m_runModal(std::move(runModal)) {}

void PermissionGuard::presentPermissionAlert(ScreenRecordingPermission permission) {
    if (m_runModal(permissionAlert(permission)) == openSettingsButton)
        openScreenRecordingPreferences();
}

void PermissionGuard::openScreenRecordingPreferences() {
    m_access.openPreferences();
}

} // namespace kestrove
