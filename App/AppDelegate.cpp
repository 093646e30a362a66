#include "App/AppDelegate.h"

namespace kestrove {

AppDelegate::AppDelegate(Application& application, AppSettings& settings, AppController& controller,
                         OutputWindowControlling& outputWindow,
                         OutputContentControlling& outputContent)
    : m_application(application)
    , m_settings(settings)
    , m_controller(controller)
    , m_outputWindow(outputWindow)
    , m_outputContent(outputContent) {
    // Back from the system's settings, perhaps: an idle session shows what has become of the
    // permission.
    m_becameActive =
        application.onBecameActive([this] { m_controller.refreshIdlePermissionState(); });
    // The stopped engine has left an empty, black output: the call should see that this is meant.
    m_sessionState = controller.sessionState().subscribe([this](const CaptureSessionState& state) {
        if (state == CaptureSessionState::stopped())
            m_outputContent.setContentView(nullptr);
    });
}

void AppDelegate::applicationDidFinishLaunching() {
    m_application.setActivationPolicy(ActivationPolicy::regular);
    m_application.activateIgnoringOtherApps();
    // The output window is also the only way in while there is no menu.
    m_outputWindow.show();
    if (m_settings.autoStart.get() && !isSharing())
        m_controller.start();
}

void AppDelegate::outputWindowClosed() {
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
