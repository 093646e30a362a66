#include "Tests/Simulation/Program.h"

#include "Core/GlobalShortcuts/HotKeyServiceRegistrar.h"
#include "Util/ScreenGeometry.h"

#include <utility>

namespace kestrove::simulation {

namespace {

constexpr const char* bundleIdentifier = "dev.kestrove.Kestrove";
constexpr Seconds followDebounce{0.15};

} // namespace

Program::Program(SimulatedDesktop& desktop)
    : m_desktop(desktop)
    , m_permissionGuard(access, [](const WarningAlert&) -> std::size_t { return 1; })
    , m_permission(access, m_permissionGuard)
    , m_renderer(makeLayer())
    , m_engine(m_renderer, {desktop.loop(), m_screenCapture, m_screens, m_log, bundleIdentifier})
    , m_displayTracker(followed(), settings.followMode.get(), followDebounce)
    , m_sourceResolver(followed(), followDebounce)
    , m_lister(m_screenCapture, m_screens, m_application, m_log)
    , m_existenceChecker(m_windowServer, m_workspace)
    , m_lockMonitor(m_workspace, m_application)
    , scheduler(desktop.loop())
    , containerView(desktop)
    , m_container(containerView)
    , outputWindow(containerView, {settings.alwaysOnTop.get(), settings.hideOutputWindow.get()},
                   windowPlatform())
    , globalShortcuts(std::make_unique<HotKeyServiceRegistrar>(desktop.loop(), m_hotKeys, m_log,
                                                               bundleIdentifier),
                      m_log, bundleIdentifier)
    , controller(collaborators()) {
    m_observations.push_back(
        m_application.onBecameActive([this] { controller.refreshIdlePermissionState(); }));
    m_observations.push_back(
        controller.sessionState().subscribe([this](const CaptureSessionState& state) {
            if (state == CaptureSessionState::stopped())
                m_container.setContentView(nullptr);
        }));
}

FollowedDesktop Program::followed() {
    return {m_desktop.loop(), m_pointer, m_screens, m_windowServer, m_workspace};
}

std::unique_ptr<DisplayLayer> Program::makeLayer() {
    auto layer = std::make_unique<SimulatedDisplayLayer>(m_desktop);
    m_displayLayer = layer.get();
    return layer;
}

OutputWindowPlatform Program::windowPlatform() {
    return {m_desktop.loop(), m_screens, m_application,
            [this](const Rect& content, WindowStyle) -> std::unique_ptr<OutputWindow> {
                auto window = std::make_unique<SimulatedOutputWindow>(m_desktop, content);
                m_window = window.get();
                return window;
            }};
}

AppControllerCollaborators Program::collaborators() {
    return {
        .mainLoop = m_desktop.loop(),
        .settings = settings,
        .renderer = m_renderer,
        .captureEngine = m_engine,
        .displayTracker = m_displayTracker,
        .sourceResolver = m_sourceResolver,
        .outputContainer = m_container,
        .outputWindow = outputWindow,
        .activeOverlay = nullptr,
        .sourceLister = m_lister,
        .windowExistenceChecker = m_existenceChecker,
        .sessionLockState = m_lockMonitor,
        .sourceRefreshScheduler = scheduler,
        .permissionAccess = m_permission.operations(),
        .displayIDUnderMouse =
            [this] { return ScreenGeometry::displayIDUnderMouse(m_pointer, m_screens); },
        .systemLog = m_log,
        .logSubsystem = bundleIdentifier,
        .diagnosticOutput = diagnostics,
        .globalShortcuts = &globalShortcuts,
    };
}

void Program::didFinishLaunching() {
    m_application.setActivationPolicy(ActivationPolicy::regular);
    m_application.activateIgnoringOtherApps();
    outputWindow.show();
    if (settings.autoStart.get() && !controller.sessionState().get().isActive())
        controller.start();
}

void Program::editShortcuts(ShortcutBindings edited) {
    ++m_shortcutEditCount;
    settings.shortcutBindings.set(std::move(edited));
}

SimulatedFramePointer Program::seen() const {
    return containerView.showsContent() ? m_displayLayer->visible() : nullptr;
}

} // namespace kestrove::simulation
