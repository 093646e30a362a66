#pragma once

#include "App/AppDelegate.h"
#include "Core/AppController/AppController.h"
#include "Core/AppController/TimerSourceRefreshScheduler.h"
#include "Core/CaptureEngine/CaptureEngine.h"
#include "Core/GlobalShortcuts/GlobalShortcuts.h"
#include "Core/LiveScreenRecordingPermission.h"
#include "Core/SourceLister/ScreenCaptureSourceSnapshotLister.h"
#include "Core/SourceLister/WindowServerExistenceChecker.h"
#include "Core/SourceLister/WorkspaceSessionLockMonitor.h"
#include "Desktop/HotKeys.h"
#include "Desktop/OverlayWindow.h"
#include "Desktop/Pointer.h"
#include "Desktop/ScreenRecordingAccess.h"
#include "Desktop/Workspace.h"
#include "UI/ActiveSourceOverlay/ActiveSourceOverlay.h"
#include "UI/Composer/OutputContainer.h"
#include "UI/OutputWindow/OutputWindowController.h"

#include <functional>
#include <memory>

namespace kestrove {

/// The desktop that a session is on: adapters of one platform. All of it outlives the session.
struct SessionDesktop {
    MainLoop& loop;
    SystemLog& log;
    UserDefaults& defaults;
    Application& application;
    ScreenCapture& screenCapture;
    Screens& screens;
    Pointer& pointer;
    WindowServer& windowServer;
    Workspace& workspace;
    HotKeys& hotKeys;
    ScreenRecordingAccess& recordingAccess;
    /// Our own.
    ProcessID currentProcess = 0;
};

/// What a session shows itself by.
struct SessionViews {
    std::unique_ptr<DisplayLayer> displayLayer;
    /// Outlives the session.
    OutputContainerView& containerView;
    MakeOutputWindow makeOutputWindow;
    std::unique_ptr<OverlayWindow> overlayWindow;
    /// Tells that windows may have moved, for the overlay to follow. Empty on a desktop that does
    /// not tell.
    std::function<Subscription(std::function<void()>)> onWindowsChanged;
    RunModalAlert runModalAlert;
    std::function<void()> showSourcePicker;
    /// Whether there is a tray now, with our icon in it.
    std::function<bool()> hasTray;
    std::function<void()> openPanelWindow;
};

/// Everything of the application but its views and its adapters, joined: what decides, whatever
/// desktop it is on. The members stand in the order in which they need each other.
///
/// Thread: main.
class KestroveSession {
public:
    /// Reverse-DNS name of this application: what desktops, log and queues know it by.
    static constexpr const char* bundleIdentifier = "dev.kestrove.Kestrove";

    KestroveSession(SessionDesktop desktop, SessionViews views, DiagnosticOutput& diagnostics);
    KestroveSession(const KestroveSession&) = delete;
    KestroveSession& operator=(const KestroveSession&) = delete;
    ~KestroveSession();

    [[nodiscard]] AppDelegate& delegate() { return m_appDelegate; }
    [[nodiscard]] AppSettings& settings() { return m_settings; }
    [[nodiscard]] AppController& controller() { return m_controller; }
    [[nodiscard]] OutputWindowControlling& outputWindow() { return m_outputWindow; }
    [[nodiscard]] GlobalShortcuts& globalShortcuts() { return m_globalShortcuts; }
    [[nodiscard]] const TimerSourceRefreshScheduler& refreshScheduler() const {
        return m_refreshScheduler;
    }

private:
    [[nodiscard]] AppControllerCollaborators collaborators(const SessionDesktop& desktop,
                                                           std::function<void()> showSourcePicker,
                                                           DiagnosticOutput& diagnostics);

    AppSettings m_settings;
    PermissionGuard m_permissionGuard;
    LiveScreenRecordingPermission m_permission;

    FrameRenderer m_renderer;
    CaptureEngine m_captureEngine;
    ActiveDisplayTracker m_displayTracker;
    ActiveSourceResolver m_sourceResolver;
    ScreenCaptureSourceSnapshotLister m_sourceLister;
    WindowServerExistenceChecker m_existenceChecker;
    WorkspaceSessionLockMonitor m_lockMonitor;
    TimerSourceRefreshScheduler m_refreshScheduler;

    OutputContainer m_outputContainer;
    OutputWindowController m_outputWindow;
    ActiveSourceOverlay m_activeOverlay;

    GlobalShortcuts m_globalShortcuts;
    AppController m_controller;
    AppDelegate m_appDelegate;
};

} // namespace kestrove
