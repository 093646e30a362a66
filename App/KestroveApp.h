#pragma once

#include "App/AppDelegate.h"
#include "App/OwnWindows.h"
#include "App/X11Desktop/X11Desktop.h"
#include "Core/AppController/AppController.h"
#include "Core/AppController/TimerSourceRefreshScheduler.h"
#include "Core/CaptureEngine/CaptureEngine.h"
#include "Core/GlobalShortcuts/GlobalShortcuts.h"
#include "Core/LiveScreenRecordingPermission.h"
#include "Core/SourceLister/ScreenCaptureSourceSnapshotLister.h"
#include "Core/SourceLister/WindowServerExistenceChecker.h"
#include "Core/SourceLister/WorkspaceSessionLockMonitor.h"
#include "Platform/Qt/QtApplication.h"
#include "UI/ActiveSourceOverlay/ActiveSourceOverlay.h"
#include "UI/CommandMenu/CommandMenu.h"
#include "UI/Composer/OutputContainer.h"
#include "UI/Composer/OutputContainerWidget.h"
#include "UI/MenuBarView/MenuBarView.h"
#include "UI/MenuBarView/NativeMenu.h"
#include "UI/MenuBarView/Panel/Panel.h"
#include "UI/MenuBarView/TrayIcon.h"
#include "UI/OutputWindow/OutputWindowCommands.h"
#include "UI/OutputWindow/OutputWindowController.h"
#include "UI/SettingsView/SettingsWindow.h"
#include "UI/SourcePicker/SourcePickerWindowController.h"

#include <memory>
#include <optional>

namespace kestrove {

/// What the application stands on: made in `main`, where each may fail, and outliving it.
struct KestroveGround {
    MainLoop& loop;
    SystemLog& log;
    UserDefaults& defaults;
    X11Desktop& desktop;
};

/// The whole application: the one place that names all parts and joins them. The members stand in
/// the order in which they need each other.
///
/// Thread: main, that of the QApplication, which outlives it.
class KestroveApp {
public:
    /// Reverse-DNS name of this application: what desktops, log and queues know it by.
    static constexpr const char* bundleIdentifier = "dev.kestrove.Kestrove";

    explicit KestroveApp(KestroveGround ground);
    KestroveApp(const KestroveApp&) = delete;
    KestroveApp& operator=(const KestroveApp&) = delete;
    ~KestroveApp() = default;

    [[nodiscard]] AppDelegate& delegate() { return m_appDelegate; }
    [[nodiscard]] AppSettings& settings() { return m_settings; }
    [[nodiscard]] AppController& controller() { return m_controller; }
    [[nodiscard]] OutputWindowControlling& outputWindow() { return m_outputWindow; }

private:
    [[nodiscard]] OutputWindowPlatform windowPlatform(KestroveGround ground);
    [[nodiscard]] OutputWindowCommands windowCommands();
    [[nodiscard]] AppControllerCollaborators collaborators(KestroveGround ground);
    [[nodiscard]] SettingsViewCollaborators settingsCollaborators(KestroveGround ground);
    [[nodiscard]] MenuBarViewCollaborators menuCollaborators(KestroveGround ground);
    void showSourcePicker(KestroveGround ground);

    /// None of them is on any capture.
    OwnWindows m_ownWindows;
    QtApplication m_application;
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
    StandardOutput m_diagnosticOutput;

    OutputContainerWidget m_containerView;
    OutputContainer m_outputContainer;
    OutputWindowController m_outputWindow;
    ActiveSourceOverlay m_activeOverlay;

    GlobalShortcuts m_globalShortcuts;
    AppController m_controller;
    AppDelegate m_appDelegate;
    /// Made when it is opened for the first time.
    std::optional<SourcePickerWindowController> m_pickerController;
    SettingsWindow m_settingsWindow;
    MenuBarView m_menuBarView;
    CommandMenu m_commandMenu;
    NativeMenu m_menu;
    Panel m_panel;
    TrayIcon m_trayIcon;
};

} // namespace kestrove
