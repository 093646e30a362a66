#include "Core/AppController/CaptureSessionState.h"

#include <utility>

namespace kestrove {

namespace {

std::string_view statusMessageFor(CaptureRecoveryReason reason) {
    switch (reason) {
    case CaptureRecoveryReason::sourceUnavailable:
        return "利用可能な共有ソースがありません";
    case CaptureRecoveryReason::switchFailed:
        return "共有ソースの切替に失敗しました";
    case CaptureRecoveryReason::streamStopped:
        return "画面共有が停止しました";
    }
    std::unreachable();
}

} // namespace

std::optional<ScreenRecordingPermission> CaptureSessionState::permission() const {
    if (kind() != Kind::permissionRequired)
        return std::nullopt;
    return static_cast<ScreenRecordingPermission>(m_why);
}

std::optional<CaptureRecoveryReason> CaptureSessionState::recoveryReason() const {
    if (kind() != Kind::recoveryRequired)
        return std::nullopt;
    return static_cast<CaptureRecoveryReason>(m_why);
}

bool CaptureSessionState::isActive() const {
    switch (kind()) {
    case Kind::starting:
    case Kind::running:
    case Kind::switching:
    case Kind::waitingForSource:
        return true;
    case Kind::permissionRequired:
    case Kind::recoveryRequired:
    case Kind::stopped:
    case Kind::stopping:
        return false;
    }
    std::unreachable();
}

std::string_view CaptureSessionState::statusMessage() const {
    switch (kind()) {
    case Kind::permissionRequired:
        return permission() == ScreenRecordingPermission::revoked
                   ? "画面収録の許可が取り消されました"
                   : "画面収録の許可が必要です";
    case Kind::recoveryRequired:
        return statusMessageFor(*recoveryReason());
    case Kind::stopped:
        return "停止中";
    case Kind::starting:
        return "開始中…";
    case Kind::running:
        return "稼働中";
    case Kind::switching:
        return "切替中…";
    case Kind::waitingForSource:
        return "ソース待ち";
    case Kind::stopping:
        return "停止処理中…";
    }
    std::unreachable();
}

} // namespace kestrove
