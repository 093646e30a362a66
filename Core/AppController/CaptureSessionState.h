#pragma once

#include "Core/AppController/CaptureRecoveryReason.h"
#include "Core/ScreenRecordingPermission.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrove {

/// What the one capture session is doing. A value of one byte: a kind and, for two of the kinds,
/// why.
class CaptureSessionState {
public:
    enum class Kind : std::uint8_t {
        /// Capture cannot run because screen recording is not permitted; carries the permission.
        permissionRequired,
        /// Stopped itself safely and waits for the user to try again; carries the reason.
        recoveryRequired,
        stopped,
        starting,
        /// A stream is live and its frames reach the output window.
        running,
        /// The running stream is on its way to another source.
        switching,
        /// Sharing is on, but there is no source right now; resumes by itself when there is one.
        waitingForSource,
        stopping,
    };

    [[nodiscard]] static CaptureSessionState permissionRequired(ScreenRecordingPermission why) {
        return {Kind::permissionRequired, static_cast<std::uint8_t>(why)};
    }
    [[nodiscard]] static CaptureSessionState recoveryRequired(CaptureRecoveryReason why) {
        return {Kind::recoveryRequired, static_cast<std::uint8_t>(why)};
    }
    [[nodiscard]] static CaptureSessionState stopped() { return {Kind::stopped, 0}; }
    [[nodiscard]] static CaptureSessionState starting() { return {Kind::starting, 0}; }
    [[nodiscard]] static CaptureSessionState running() { return {Kind::running, 0}; }
    [[nodiscard]] static CaptureSessionState switching() { return {Kind::switching, 0}; }
    [[nodiscard]] static CaptureSessionState waitingForSource() {
        return {Kind::waitingForSource, 0};
    }
    [[nodiscard]] static CaptureSessionState stopping() { return {Kind::stopping, 0}; }

    [[nodiscard]] Kind kind() const { return static_cast<Kind>(m_kind); }

    /// Present for `permissionRequired` only.
    [[nodiscard]] std::optional<ScreenRecordingPermission> permission() const;
    /// Present for `recoveryRequired` only.
    [[nodiscard]] std::optional<CaptureRecoveryReason> recoveryReason() const;

    /// Whether sharing is on: `starting`, `running`, `switching` or `waitingForSource`.
    [[nodiscard]] bool isActive() const;

    /// What the menu shows as the session's status, in Japanese.
    [[nodiscard]] std::string_view statusMessage() const;

    bool operator==(const CaptureSessionState&) const = default;

private:
    CaptureSessionState(Kind kind, std::uint8_t why)
        : m_kind(static_cast<std::uint8_t>(kind) & 0xFU)
        , m_why(why & 0xFU) {}

    std::uint8_t m_kind : 4;
    std::uint8_t m_why : 4;
};

} // namespace kestrove
