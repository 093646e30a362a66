#include "App/KestroveSession.h"

#include "Core/GlobalShortcuts/HotKeyServiceRegistrar.h"
#include "Util/ScreenGeometry.h"

#include <utility>

namespace kestrove {

namespace {

/// How long pointer and focus must have been still before the session follows them.
constexpr Seconds followDebounce{0.15};

FollowedDesktop followed(const SessionDesktop& desktop) {
    return {desktop.loop, desktop.pointer, desktop.screens, desktop.windowServer,
            desktop.workspace};
}

CaptureEnginePlatform enginePlatform(const SessionDesktop& desktop) {
    return {desktop.loop, desktop.screenCapture, desktop.screens, desktop.log,
            KestroveSession::bundleIdentifier};
}

std::unique_ptr<HotKeyRegistrar> hotKeyRegistrar(const SessionDesktop& desktop) {
    return std::make_unique<HotKeyServiceRegistrar>(desktop.loop, desktop.hotKeys, desktop.log,
                                                    KestroveSession::bundleIdentifier);
}

} // namespace

KestroveSession::KestroveSession(SessionDesktop desktop, SessionViews views,
                                 DiagnosticOutput& diagnostics)
    : m_settings(desktop.defaults)
    , m_permissionGuard(desktop.recordingAccess, std::move(views.runModalAlert))
    , m_permission(desktop.recordingAccess, m_permissionGuard)
    , m_renderer(std::move(views.displayLayer))
    , m_captureEngine(m_renderer, enginePlatform(desktop))
    , m_displayTracker(followed(desktop), m_settings.followMode.get(), followDebounce)
    , m_sourceResolver(followed(desktop), followDebounce)
    , m_sourceLister(desktop.screenCapture, desktop.screens, desktop.application, desktop.log)
    , m_existenceChecker(desktop.windowServer, desktop.workspace)
    , m_lockMonitor(desktop.workspace, desktop.application)
    , m_refreshScheduler(desktop.loop)
    , m_outputContainer(views.containerView)
    , m_outputWindow(
          views.containerView, {m_settings.alwaysOnTop.get(), m_settings.hideOutputWindow.get()},
          {desktop.loop, desktop.screens, desktop.application, std::move(views.makeOutputWindow)})
    , m_activeOverlay(std::move(views.overlayWindow),
                      {.mainLoop = desktop.loop,
                       .windowServer = desktop.windowServer,
                       .screens = desktop.screens,
                       .currentProcess = desktop.currentProcess,
                       .onWindowsChanged = std::move(views.onWindowsChanged)})
    , m_globalShortcuts(hotKeyRegistrar(desktop), desktop.log, bundleIdentifier)
    , m_controller(collaborators(desktop, std::move(views.showSourcePicker), diagnostics))
    , m_appDelegate(desktop.application, m_settings, m_controller, m_outputWindow,
                    m_outputContainer, m_activeOverlay, std::move(views.hasTray),
                    std::move(views.openPanelWindow)) {}

KestroveSession::~KestroveSession() {
    // The container outlives what it shows.
    m_outputContainer.setContentView(nullptr);
}

AppControllerCollaborators KestroveSession::collaborators(const SessionDesktop& desktop,
                                                          std::function<void()> showSourcePicker,
                                                          DiagnosticOutput& diagnostics) {
    return {
        .mainLoop = desktop.loop,
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
            [&pointer = desktop.pointer, &screens = desktop.screens] {
                return ScreenGeometry::displayIDUnderMouse(pointer, screens);
            },
        .systemLog = desktop.log,
        .logSubsystem = bundleIdentifier,
        .diagnosticOutput = diagnostics,
        .globalShortcuts = &m_globalShortcuts,
        .showSourcePicker = std::move(showSourcePicker),
    };
}

} // namespace kestrove
