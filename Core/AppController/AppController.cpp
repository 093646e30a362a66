#include "Core/AppController/AppController.h"

#include "Core/AppController/RecoveryGuidance.h"

#include <algorithm>
#include <utility>

namespace kestrove {

namespace {

/// Every value that differs from the one before it, beginning with the next.
template <class Value>
Subscription observeChanges(const Published<Value>& published,
                            std::function<void(const Value&)> changed) {
    return published.subscribe(
        [last = published.get(), told = std::move(changed)](const Value& value) mutable {
            if (value == last)
                return;
            last = value;
            told(value);
        });
}

/// The value as it is, and every value that differs from the one before it.
template <class Value>
Subscription applyAndObserve(const Published<Value>& published,
                             std::function<void(const Value&)> apply) {
    apply(published.get());
    return observeChanges(published, std::move(apply));
}

} // namespace

AppController::AppController(AppControllerCollaborators collaborators)
    : m_with(std::move(collaborators))
    , m_followMode(m_with.settings.followMode.get())
    , m_tasks(m_with.mainLoop) {
    // Before the observations: nobody needs to be told of picks that were gone from the start.
    discardManualWindowsOfPreviousProcess();
    observeSettings();
    observeFollowing();
    m_with.captureEngine.setOnUnexpectedStop([this] { captureStreamDidStop(); });
    if (m_with.globalShortcuts != nullptr) {
        m_shortcutSettingsCoordinator.emplace(m_with.mainLoop, m_with.settings,
                                              *m_with.globalShortcuts, globalShortcutHandlers());
    }
    m_tasks.post([this] { refreshIdlePermissionState(); });
}

AppController::~AppController() {
    m_with.captureEngine.setOnUnexpectedStop({});
    m_with.sourceRefreshScheduler.cancel();
    m_with.displayTracker.stop();
    m_with.sourceResolver.stop();
}

std::optional<std::string_view> AppController::recoveryGuidance() const {
    return kestrove::recoveryGuidance(m_sessionState.get());
}

void AppController::observeSettings() {
    const auto& settings = m_with.settings;
    m_observations.push_back(
        applyAndObserve<std::int64_t>(settings.targetFPS, [this](std::int64_t framesPerSecond) {
            m_with.captureEngine.setFPS(
                static_cast<int>(std::clamp<std::int64_t>(framesPerSecond, 1, 60)));
        }));
    m_observations.push_back(applyAndObserve<bool>(
        settings.alwaysOnTop, [this](bool onTop) { m_with.outputWindow.setAlwaysOnTop(onTop); }));
    m_observations.push_back(applyAndObserve<bool>(
        settings.hideOutputWindow, [this](bool hidden) { m_with.outputWindow.setHidden(hidden); }));
    // The values of now are what the controller begins with: the next two react to changes only.
    m_observations.push_back(observeChanges<std::vector<CaptureSource>>(
        settings.manualSources, [this](const std::vector<CaptureSource>& sources) {
            sourceVisibilityCoordinator().selectedSourcesDidChange(sources);
            if (m_followMode == FollowMode::manual)
                applyManualSources(sources);
        }));
    m_observations.push_back(observeChanges<FollowMode>(
        settings.followMode, [this](FollowMode mode) { handleFollowModeChange(mode); }));
}

void AppController::observeFollowing() {
    m_observations.push_back(m_with.displayTracker.currentDisplay().subscribe(
        [this](const std::optional<DisplayID>& display) {
            if (!isAutoFollow(m_followMode) || !isSessionActive())
                return;
            if (const auto source = autoDisplaySource(display))
                follow(source);
        }));
    m_observations.push_back(m_with.sourceResolver.currentSource().subscribe(
        [this](const std::optional<CaptureSource>& source) {
            if (m_followMode == FollowMode::manual && isSessionActive())
                follow(source);
        }));
}

} // namespace kestrove
