#pragma once

#include "Desktop/OverlayWindow.h"
#include "Platform/X11/Capture/KeptContent.h"
#include "Platform/X11/Capture/X11ScreenCapture.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/HotKeys/KeyTexts.h"
#include "Platform/X11/HotKeys/X11HotKeys.h"
#include "Platform/X11/Pointer.h"
#include "Platform/X11/RawMotion.h"
#include "Platform/X11/ScreenRecordingAccess.h"
#include "Platform/X11/Screens/MonitorLayout.h"
#include "Platform/X11/Screens/Screens.h"
#include "Platform/X11/WindowIdentity/Applications.h"
#include "Platform/X11/WindowManagerRequests.h"
#include "Platform/X11/WindowParking.h"
#include "Platform/X11/WindowServer.h"
#include "Platform/X11/Workspace/Workspace.h"
#include "UI/OutputWindow/NativeWindowRequests.h"

#include <expected>
#include <memory>

namespace kestrove {

/// The X11 adapters, joined. Main thread; made after the QGuiApplication, which must run on Qt's
/// X11 platform, and destroyed before it.
class X11Desktop {
public:
    /// Fails when the server cannot be reached or lacks what capture needs.
    static std::expected<std::unique_ptr<X11Desktop>, PlatformError>
    open(MainLoop& loop, DescriptorWatching& watching, SessionSignals& session);

    [[nodiscard]] x11::Connection& connection() { return *m_connection; }
    [[nodiscard]] Screens& screens() { return m_screens; }
    [[nodiscard]] Pointer& pointer() { return m_pointer; }
    [[nodiscard]] WindowServer& windowServer() { return m_windowServer; }
    [[nodiscard]] Workspace& workspace() { return m_workspace; }
    [[nodiscard]] ScreenCapture& screenCapture() { return m_screenCapture; }
    [[nodiscard]] HotKeys& hotKeys() { return m_hotKeys; }
    [[nodiscard]] const x11::KeyTexts& keyTexts() const { return m_keyTexts; }
    [[nodiscard]] ScreenRecordingAccess& recordingAccess() { return m_recordingAccess; }

    /// On no capture of this desktop. Not to be used after this object, like all that it gives.
    [[nodiscard]] std::unique_ptr<OverlayWindow> makeOverlayWindow(double pixelsPerPoint);

    /// Windows of ours, for every picture of a display to leave out.
    [[nodiscard]] x11::WindowsNeverCaptured& neverCaptured() {
        return m_screenCapture.neverCaptured();
    }

    /// Not to be used after this object.
    [[nodiscard]] NativeWindowRequests windowRequests();

private:
    X11Desktop(std::unique_ptr<x11::Connection> connection, DescriptorWatching& watching,
               SessionSignals& session);

    std::unique_ptr<x11::Connection> m_connection;
    x11::WindowManagerRequests m_windowManager;
    x11::WindowParking m_parking;
    x11::MonitorLayout m_monitors;
    x11::RawMotion m_motion;
    x11::Applications m_applications;
    x11::Screens m_screens;
    x11::Pointer m_pointer;
    x11::WindowServer m_windowServer;
    x11::Workspace m_workspace;
    x11::KeptContent m_keptContent;
    x11::X11ScreenCapture m_screenCapture;
    x11::X11HotKeys m_hotKeys;
    x11::KeyTexts m_keyTexts;
    x11::ScreenRecordingAccess m_recordingAccess;
};

} // namespace kestrove
