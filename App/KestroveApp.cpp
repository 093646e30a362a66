#include "App/KestroveApp.h"

#include "App/PrivacyPolicy.h"
#include "Core/GlobalShortcuts/HotKeyServiceRegistrar.h"
#include "Platform/Qt/QtAnnouncement.h"
#include "Platform/X11/Capture/X11DisplayLayer.h"
#include "Platform/X11/HotKeys/PhysicalKeys.h"
#include "Platform/X11/WindowChanges.h"
#include "UI/Alerts/RunModalAlert.h"
#include "UI/OutputWindow/QtOutputWindow.h"
#include "Util/ScreenGeometry.h"

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

/// How long pointer and focus must have been still before the session follows them.
constexpr Seconds followDebounce{0.15};

FollowedDesktop followedDesktop(KestroveGround ground) {
    auto& desktop = ground.desktop;
    return {ground.loop, desktop.pointer(), desktop.screens(), desktop.windowServer(),
            desktop.workspace()};
}

CaptureEnginePlatform enginePlatform(KestroveGround ground) {
    return {ground.loop, ground.desktop.screenCapture(), ground.desktop.screens(), ground.log,
            KestroveApp::bundleIdentifier};
}

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

std::unique_ptr<HotKeyRegistrar> hotKeyRegistrar(KestroveGround ground) {
    return std::make_unique<HotKeyServiceRegistrar>(ground.loop, ground.desktop.hotKeys(),
                                                    ground.log, KestroveApp::bundleIdentifier);
}

/// What the user's desktop enlarges texts by: X itself has no scale, and the toolkit's is off.
double pixelsPerPoint() {
    constexpr double ordinaryDotsPerInch = 96;
    const auto* const screen = QGuiApplication::primaryScreen();
    return screen ? std::max(1.0, screen->logicalDotsPerInch() / ordinaryDotsPerInch) : 1;
}

ActiveSourceOverlaySurroundings overlaySurroundings(KestroveGround ground) {
    return {.mainLoop = ground.loop,
            .windowServer = ground.desktop.windowServer(),
            .screens = ground.desktop.screens(),
            .currentProcess = getpid(),
            .onWindowsChanged = [&connection =
                                     ground.desktop.connection()](std::function<void()> callback) {
                return x11::watchWindowChanges(connection, std::move(callback));
            }};
}

} // namespace

KestroveApp::KestroveApp(KestroveGround ground)
    : m_ownWindows([&own = ground.desktop.neverCaptured()](
                       WId window) { own.add(static_cast<xcb_window_t>(window)); },
                   [&own = ground.desktop.neverCaptured()](WId window) {
                       own.remove(static_cast<xcb_window_t>(window));
                   })
    , m_application(ground.loop, bundleIdentifier, bringToFront(ground.desktop))
    , m_settings(ground.defaults)
    , m_permissionGuard(ground.desktop.recordingAccess(), runModalAlert)
    , m_permission(ground.desktop.recordingAccess(), m_permissionGuard)
    , m_renderer(std::make_unique<x11::X11DisplayLayer>(ground.desktop.connection()))
    , m_captureEngine(m_renderer, enginePlatform(ground))
    , m_displayTracker(followedDesktop(ground), m_settings.followMode.get(), followDebounce)
    , m_sourceResolver(followedDesktop(ground), followDebounce)
    , m_sourceLister(ground.desktop.screenCapture(), ground.desktop.screens(), m_application,
                     ground.log)
    , m_existenceChecker(ground.desktop.windowServer(), ground.desktop.workspace())
    , m_lockMonitor(ground.desktop.workspace(), m_application)
    , m_refreshScheduler(ground.loop)
    , m_outputContainer(m_containerView)
    , m_outputWindow(m_containerView,
                     {m_settings.alwaysOnTop.get(), m_settings.hideOutputWindow.get()},
                     windowPlatform(ground))
    , m_activeOverlay(ground.desktop.makeOverlayWindow(pixelsPerPoint()),
                      overlaySurroundings(ground))
    , m_globalShortcuts(hotKeyRegistrar(ground), ground.log, bundleIdentifier)
    , m_controller(collaborators(ground))
    , m_appDelegate(m_application, m_settings, m_controller, m_outputWindow, m_outputContainer,
                    m_activeOverlay, TrayIcon::hasTray, [this] { m_panel.openWindow(); })
    , m_settingsWindow(settingsCollaborators(ground), widgetToFront(ground.desktop))
    , m_menuBarView(menuCollaborators(ground))
    , m_commandMenu(m_menuBarView,
                    [this] {
                        return shortcutTexts([this](ShortcutAction action) {
                            return m_globalShortcuts.registeredBinding(action);
                        });
                    })
    , m_menu(m_menuBarView)
    , m_panel(m_menuBarView, widgetToFront(ground.desktop))
    , m_trayIcon(m_menu.menu(), [this](QRect icon) { m_panel.openAt(icon); }) {}

OutputWindowPlatform KestroveApp::windowPlatform(KestroveGround ground) {
    auto makeWindow = [this, ground](const Rect& contentRect, WindowStyle style) {
        QtOutputWindowSurroundings surroundings{ground.loop, ground.desktop.screens(),
                                                ground.desktop.windowRequests(), windowCommands()};
        return std::make_unique<QtOutputWindow>(std::move(surroundings), contentRect, style);
    };
    return {ground.loop, ground.desktop.screens(), m_application, std::move(makeWindow)};
}

OutputWindowCommands KestroveApp::windowCommands() {
    // Called by the user's hand, when everything below has long been made.
    OutputWindowCommands commands;
    commands.isSharing = [this] { return m_appDelegate.isSharing(); };
    commands.start = [this] { m_controller.start(); };
    commands.quit = [this] { m_appDelegate.terminate(); };
    commands.menu = [this]() -> QMenu& { return m_menu.menu(); };
    commands.windowClosed = [this] { m_appDelegate.outputWindowClosed(); };
    return commands;
}

AppControllerCollaborators KestroveApp::collaborators(KestroveGround ground) {
    return {
        .mainLoop = ground.loop,
        .settings = m_settings,
        .renderer = m_renderer,
        .captureEngine = m_captureEngine,
        .displayTracker = m_displayTracker,
        .sourceResolver = m_sourceResolver,
        .outputContainer = m_outputContainer,
        .outputWindow = m_outputWindow,
        .activeOverlay = &m_activeOverlay,
        .sourceLister = m_sourceLister,
        .windowExistenceChecker = m_existenceChecker,
        .sessionLockState = m_lockMonitor,
        .sourceRefreshScheduler = m_refreshScheduler,
        .permissionAccess = m_permission.operations(),
        .displayIDUnderMouse =
            [&desktop = ground.desktop] {
                return ScreenGeometry::displayIDUnderMouse(desktop.pointer(), desktop.screens());
            },
        .systemLog = ground.log,
        .logSubsystem = bundleIdentifier,
        .diagnosticOutput = m_diagnosticOutput,
        .globalShortcuts = &m_globalShortcuts,
        .showSourcePicker = [this, ground] { showSourcePicker(ground); },
    };
}

SettingsViewCollaborators KestroveApp::settingsCollaborators(KestroveGround ground) {
    return {
        .loop = ground.loop,
        .settings = m_settings,
        .globalShortcuts = m_globalShortcuts,
        .keyboard = {.keyCode = x11::keyCodeOf,
                     .characters = [&texts = ground.desktop.keyTexts()](
                                       std::uint32_t keyCode) { return texts.characters(keyCode); },
                     .announce = announceToScreenReader},
    };
}

MenuBarViewCollaborators KestroveApp::menuCollaborators(KestroveGround ground) {
    return {
        .loop = ground.loop,
        .settings = m_settings,
        .controller = m_controller,
        .outputWindow = m_outputWindow,
        .shortcutTexts =
            [this] {
                return shortcutTexts([this](ShortcutAction action) {
                    return m_settings.shortcutBindings.get().at(action);
                });
            },
        .openScreenRecordingPreferences = {}, // X knows no such permission
        .showSourcePicker = [this] { m_controller.showSourcePicker(); },
        .openSettings = [this] { m_settingsWindow.open(); },
        .openPrivacyPolicy = [this] { openPrivacyPolicy(m_application); },
        .quit = [this] { m_appDelegate.terminate(); },
    };
}

void KestroveApp::showSourcePicker(KestroveGround ground) {
    if (!m_pickerController) {
        SourcePickerWindowController::Surroundings surroundings{
            .settings = m_settings,
            .controller = m_controller,
            .application = m_application,
            .platform = {ground.loop, ground.desktop.screenCapture(), ground.desktop.screens(),
                         m_application, ground.log},
            .bringToFront = [activate = ground.desktop.windowRequests().activate](QWidget& window) {
                activate(window.winId());
            }};
        m_pickerController.emplace(std::move(surroundings),
                                   [this] { return m_controller.selfCaptureWindowIDs(); });
    }
    m_pickerController->show();
}

} // namespace kestrove
