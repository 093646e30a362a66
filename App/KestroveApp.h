#pragma once

#include "App/KestroveSession.h"
#include "App/OwnWindows.h"
#include "App/X11Desktop/X11Desktop.h"
#include "Platform/Qt/QtApplication.h"
#include "UI/CommandMenu/CommandMenu.h"
#include "UI/Composer/OutputContainerWidget.h"
#include "UI/MenuBarView/MenuBarView.h"
#include "UI/MenuBarView/NativeMenu.h"
#include "UI/MenuBarView/Panel/Panel.h"
#include "UI/MenuBarView/TrayIcon.h"
#include "UI/OutputWindow/OutputWindowCommands.h"
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

/// The whole application on X11: the session with the adapters of this desktop and the views. The
/// members stand in the order in which they need each other.
///
/// Thread: main, that of the QApplication, which outlives it.
class KestroveApp {
public:
    static constexpr const char* bundleIdentifier = KestroveSession::bundleIdentifier;

    explicit KestroveApp(KestroveGround ground);
    KestroveApp(const KestroveApp&) = delete;
    KestroveApp& operator=(const KestroveApp&) = delete;
    ~KestroveApp() = default;

    [[nodiscard]] AppDelegate& delegate() { return m_session.delegate(); }
    [[nodiscard]] AppSettings& settings() { return m_session.settings(); }
    [[nodiscard]] AppController& controller() { return m_session.controller(); }
    [[nodiscard]] OutputWindowControlling& outputWindow() { return m_session.outputWindow(); }

private:
    [[nodiscard]] SessionDesktop sessionDesktop(KestroveGround ground);
    [[nodiscard]] SessionViews sessionViews(KestroveGround ground);
    [[nodiscard]] OutputWindowCommands windowCommands();
    [[nodiscard]] SettingsViewCollaborators settingsCollaborators(KestroveGround ground);
    [[nodiscard]] MenuBarViewCollaborators menuCollaborators(KestroveGround ground);
    void showSourcePicker(KestroveGround ground);

    /// None of them is on any capture.
    OwnWindows m_ownWindows;
    QtApplication m_application;
    StandardOutput m_diagnosticOutput;
    OutputContainerWidget m_containerView;
    KestroveSession m_session;
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
