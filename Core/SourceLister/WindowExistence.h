#pragma once

namespace kestrove {

/// What has become of a window that the user picked.
enum class WindowExistence { exists, temporarilyUnavailable, unknown, terminated };

/// Whether the window server's answers can be trusted: while the session is locked or the screens
/// sleep, windows only seem to vanish.
enum class SessionLockState { locked, unlocked, unknown };

} // namespace kestrove
