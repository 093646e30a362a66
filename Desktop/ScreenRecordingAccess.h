#pragma once

namespace kestrove {

/// The desktop's permission to record the screen. On a desktop that has no such permission, it is
/// granted exactly when capture can work.
///
/// Thread: main.
class ScreenRecordingAccess {
public:
    ScreenRecordingAccess() = default;
    ScreenRecordingAccess(const ScreenRecordingAccess&) = delete;
    ScreenRecordingAccess& operator=(const ScreenRecordingAccess&) = delete;
    virtual ~ScreenRecordingAccess() = default;

    /// Whether capture is allowed now. Never shows anything.
    [[nodiscard]] virtual bool preflight() = 0;

    /// Asks for the permission, which may show the desktop's own prompt; returns whether capture is
    /// allowed.
    [[nodiscard]] virtual bool request() = 0;

    /// Opens the page of the desktop's settings where the permission is given.
    virtual void openPreferences() = 0;
};

} // namespace kestrove
