#pragma once

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

} // namespace kestrove
