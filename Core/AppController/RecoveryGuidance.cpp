#include "Core/AppController/RecoveryGuidance.h"

#include <utility>

namespace kestrove {

namespace {

std::optional<std::string_view> guidanceFor(ScreenRecordingPermission permission) {
    switch (permission) {
    case ScreenRecordingPermission::notDetermined:
        return "開始または再試行すると、macOS の画面収録許可を確認できます。";
    case ScreenRecordingPermission::granted:
        return std::nullopt;
    case ScreenRecordingPermission::denied:
        return "システム設定で画面収録を許可してから再試行してください。";
    case ScreenRecordingPermission::revoked:
        return "出力を安全に停止しました。画面収録を再許可してから再試行してください。";
    }
    std::unreachable();
}

std::string_view guidanceFor(CaptureRecoveryReason reason) {
    switch (reason) {
    case CaptureRecoveryReason::sourceUnavailable:
        return "出力を安全に停止しました。ソースを確認して再試行してください。";
    case CaptureRecoveryReason::switchFailed:
    case CaptureRecoveryReason::streamStopped:
        // One text for both: the last frame was cleared, and the user's remedy is the same.
        return "古い映像を消して安全に停止しました。再試行してください。";
    }
    std::unreachable();
}

} // namespace

std::optional<std::string_view> recoveryGuidance(CaptureSessionState state) {
    if (const auto permission = state.permission())
        return guidanceFor(*permission);
    if (const auto reason = state.recoveryReason())
        return guidanceFor(*reason);
    return std::nullopt;
}

} // namespace kestrove
