#include "App/KestroveApp.h"

#include "App/PrivacyPolicy.h"
#include "Platform/Qt/QtAnnouncement.h"
#include "Platform/X11/Capture/X11DisplayLayer.h"
#include "Platform/X11/HotKeys/PhysicalKeys.h"
#include "Platform/X11/WindowChanges.h"
#include "UI/Alerts/RunModalAlert.h"
#include "UI/OutputWindow/QtOutputWindow.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>

namespace kestrove {

namespace {

QtApplication::BringToFront bringToFront(X11Desktop& desktop) {
    return [activate = desktop.windowRequests().activate](QWindow& window) {
        activate(window.winId());
    };
}

std::function<void(QWidget&)> widgetToFront(X11Desktop& desktop) {
    return [activate = desktop.windowRequests().activate](QWidget& window) {
        activate(window.winId());
    };
}

/// A shortcut that cannot work is not offered.
template <class BindingOf>
MenuShortcutTexts shortcutTexts(BindingOf bindingOf) {
    const auto text = [&bindingOf](ShortcutAction action) {
        const std::optional<ShortcutBinding> binding = bindingOf(action);
        return binding && binding->isValid() ? std::optional(binding->display()) : std::nullopt;
    };
    return {text(ShortcutAction::startStop), text(ShortcutAction::showPicker),
            text(ShortcutAction::showWindow), text(ShortcutAction::hideToggle)};
}

/// What the user's desktop enlarges texts by: X itself has no scale, and the toolkit's is off.
double pixelsPerPoint() {
    constexpr double ordinaryDotsPerInch = 96;
    const auto* const screen = QGuiApplication::primaryScreen();
    return screen ? std::max(1.0, screen->logicalDotsPerInch() / ordinaryDotsPerInch) : 1;
}

} // namespace

KestroveApp::KestroveApp(KestroveGround ground)
    : m_ownWindows([&own = ground.desktop.neverCaptured()](
                       WId window) { own.add(static_cast<xcb_window_t>(window)); },
                   [&own = ground.desktop.neverCaptured()](WId window) {
                       own.remove(static_cast<xcb_window_t>(window));
                   })
    , m_application(ground.loop, bundleIdentifier, bringToFront(ground.desktop))
    , m_session(sessionDesktop(ground), sessionViews(ground), m_diagnosticOutput)
    , m_settingsWindow(settingsCollaborators(ground), widgetToFront(ground.desktop))
    , m_menuBarView(menuCollaborators(ground))
    , m_commandMenu(m_menuBarView,
                    [this] {
                        return shortcutTexts([this](ShortcutAction action) {
                            return m_session.globalShortcuts().registeredBinding(action);
                        });
                    })
    , m_menu(m_menuBarView)
    , m_panel(m_menuBarView, widgetToFront(ground.desktop))
    , m_trayIcon(m_menu.menu(), [this](QRect icon) { m_panel.openAt(icon); }) {}

SessionDesktop KestroveApp::sessionDesktop(KestroveGround ground) {
    auto& desktop = ground.desktop;
    return {
        .loop = ground.loop,
        .log = ground.log,
        .defaults = ground.defaults,
        .application = m_application,
        .screenCapture = desktop.screenCapture(),
        .screens = desktop.screens(),
        .pointer = desktop.pointer(),
        .windowServer = desktop.windowServer(),
        .workspace = desktop.workspace(),
        .hotKeys = desktop.hotKeys(),
        .recordingAccess = desktop.recordingAccess(),
        .currentProcess = getpid(),
    };
}

SessionViews KestroveApp::sessionViews(KestroveGround ground) {
    auto& desktop = ground.desktop;
    auto makeWindow = [this, ground](const Rect& contentRect, WindowStyle style) {
        QtOutputWindowSurroundings surroundings{ground.loop, ground.desktop.screens(),
                                                ground.desktop.windowRequests(), windowCommands()};
        return std::make_unique<QtOutputWindow>(std::move(surroundings), contentRect, style);
    };
    return {
        .displayLayer = std::make_unique<x11::X11DisplayLayer>(desktop.connection()),
        .containerView = m_containerView,
        .makeOutputWindow = std::move(makeWindow),
        .overlayWindow = desktop.makeOverlayWindow(pixelsPerPoint()),
        .onWindowsChanged =
            [&connection = desktop.connection()](std::function<void()> callback) {
                return x11::watchWindowChanges(connection, std::move(callback));
            },
        .runModalAlert = runModalAlert,
        .showSourcePicker = [this, ground] { showSourcePicker(ground); },
        .hasTray = TrayIcon::hasTray,
        .openPanelWindow = [this] { m_panel.openWindow(); },
    };
}

OutputWindowCommands KestroveApp::windowCommands() {
    // Called by the user's hand, when everything below has long been made.
    OutputWindowCommands commands;
    commands.isSharing = [this] { return m_session.delegate().isSharing(); };
    commands.start = [this] { m_session.controller().start(); };
    commands.quit = [this] { m_session.delegate().terminate(); };
    commands.menu = [this]() -> QMenu& { return m_menu.menu(); };
    commands.windowClosed = [this] { m_session.delegate().outputWindowClosed(); };
    return commands;
}

SettingsViewCollaborators KestroveApp::settingsCollaborators(KestroveGround ground) {
    return {
        .loop = ground.loop,
        .settings = m_session.settings(),
        .globalShortcuts = m_session.globalShortcuts(),
        .keyboard = {.keyCode = x11::keyCodeOf,
                     .characters = [&texts = ground.desktop.keyTexts()](
                                       std::uint32_t keyCode) { return texts.characters(keyCode); },
                     .announce = announceToScreenReader},
    };
}

MenuBarViewCollaborators KestroveApp::menuCollaborators(KestroveGround ground) {
    return {
        .loop = ground.loop,
        .settings = m_session.settings(),
        .controller = m_session.controller(),
        .outputWindow = m_session.outputWindow(),
        .shortcutTexts =
            [this] {
                return shortcutTexts([this](ShortcutAction action) {
                    return m_session.settings().shortcutBindings.get().at(action);
                });
            },
        .openScreenRecordingPreferences = {}, // X knows no such permission
        .showSourcePicker = [this] { m_session.controller().showSourcePicker(); },
        .openSettings = [this] { m_settingsWindow.open(); },
        .openPrivacyPolicy = [this] { openPrivacyPolicy(m_application); },
        .quit = [this] { m_session.delegate().terminate(); },
    };
}

void KestroveApp::showSourcePicker(KestroveGround ground) {
    if (!m_pickerController) {
        SourcePickerWindowController::Surroundings surroundings{
            .settings = m_session.settings(),
            .controller = m_session.controller(),
            .application = m_application,
            .platform = {ground.loop, ground.desktop.screenCapture(), ground.desktop.screens(),
                         m_application, ground.log},
            .bringToFront = [activate = ground.desktop.windowRequests().activate](QWidget& window) {
                activate(window.winId());
            }};
        m_pickerController.emplace(std::move(surroundings), [this] {
            return m_session.controller().selfCaptureWindowIDs();
        });
    }
    m_pickerController->show();
}

} // namespace kestrove
