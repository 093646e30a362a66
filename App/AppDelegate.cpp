#include "App/AppDelegate.h"

#include <utility>

namespace kestrove {

AppDelegate::AppDelegate(Application& application, AppSettings& settings, AppController& controller,
                         OutputWindowControlling& outputWindow,
                         OutputContentControlling& outputContent,
                         ActiveSourceOverlayControlling& activeOverlay,
                         std::function<bool()> hasTray, std::function<void()> openPanelWindow)
    : m_application(application)
    , m_settings(settings)
    , m_controller(controller)
    , m_outputWindow(outputWindow)
    , m_outputContent(outputContent)
    , m_activeOverlay(activeOverlay)
    , m_hasTray(std::move(hasTray))
    , m_openPanelWindow(std::move(openPanelWindow)) {
    // Back from the system's settings, perhaps: an idle session shows what has become of the
    // permission.
    m_becameActive =
        application.onBecameActive([this] { m_controller.refreshIdlePermissionState(); });
    // What the user ends looks ended: nothing is marked from the order on, and the call sees that
    // the empty output which the stopped engine has left is meant.
    m_sessionState = controller.sessionState().subscribe([this](const CaptureSessionState& state) {
        if (state == CaptureSessionState::stopping())
            m_activeOverlay.hide();
        if (state == CaptureSessionState::stopped())
            m_outputContent.setContentView(nullptr);
    });
}

void AppDelegate::applicationDidFinishLaunching() {
    m_application.setActivationPolicy(ActivationPolicy::regular);
    m_application.activateIgnoringOtherApps();
    // Where there is no tray, the output window is the only way in. Elsewhere it comes with the
    // session.
    if (!m_hasTray())
        m_outputWindow.show();
    if (m_settings.autoStart.get() && !isSharing())
        m_controller.start();
}

void AppDelegate::applicationStartedAgain() {
    m_openPanelWindow();
}

void AppDelegate::outputWindowClosed() {
    if (!m_hasTray())
        terminate();
}

void AppDelegate::terminate() {
    m_controller.stop();
    m_application.quit();
}

bool AppDelegate::isSharing() const {
    const auto& state = m_controller.sessionState().get();
    return state.isActive() || state.kind() == CaptureSessionState::Kind::stopping;
}

} // namespace kestrove
