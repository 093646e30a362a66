#include "Platform/Simulated/SimulatedApplication.h"

#include "Platform/Simulated/Misuse.h"
#include "Platform/Simulated/SimulatedDesktop.h"

#include <utility>

namespace kestrove {

SimulatedApplication::SimulatedApplication(SimulatedDesktop& desktop)
    : m_desktop(desktop)
    , m_becameActive(desktop.loop())
    , m_worldChanges(
          desktop.events().applicationActivated.subscribe([this](const auto& application) {
              if (application.processID == m_desktop.ownProcess())
                  m_becameActive.raise();
          })) {}

bool SimulatedApplication::isActive() const {
    m_desktop.requireMainThread("isActive");
    return m_desktop.activeApplication() == m_desktop.ownProcess();
}

ActivationPolicy SimulatedApplication::activationPolicy() const {
    m_desktop.requireMainThread("activationPolicy");
    return m_policy;
}

void SimulatedApplication::setActivationPolicy(ActivationPolicy policy) {
    m_desktop.requireMainThread("setActivationPolicy");
    m_policy = policy;
}

void SimulatedApplication::activateIgnoringOtherApps() {
    m_desktop.activateApplication(m_desktop.ownProcess());
}

void SimulatedApplication::quit() {
    m_desktop.requireMainThread("quit");
    if (std::exchange(m_hasQuit, true))
        abortOnMisuse("an application that quits twice");
}

std::optional<std::string> SimulatedApplication::bundleIdentifier() const {
    m_desktop.requireMainThread("bundleIdentifier");
    return m_desktop.findApplication(m_desktop.ownProcess())->bundleIdentifier;
}

bool SimulatedApplication::openURL(const std::string& url) {
    m_desktop.requireMainThread("openURL");
    m_openedURLs.push_back(url);
    return m_opensURLs;
}

Subscription SimulatedApplication::onBecameActive(std::function<void()> callback) {
    m_desktop.requireMainThread("onBecameActive");
    return m_becameActive.subscribe(std::move(callback));
}

} // namespace kestrove
