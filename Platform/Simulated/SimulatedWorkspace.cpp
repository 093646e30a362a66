#include "Platform/Simulated/SimulatedWorkspace.h"

#include "Platform/Simulated/SimulatedDesktop.h"

#include <utility>

namespace kestrove {

SimulatedWorkspace::SimulatedWorkspace(SimulatedDesktop& desktop)
    : m_desktop(desktop)
    , m_scope(desktop.loop()) {
    auto& events = desktop.events();
    m_worldChanges.push_back(events.applicationActivated.subscribe(
        [this](const auto& application) { announceLater(m_activated, application); }));
    m_worldChanges.push_back(events.applicationTerminated.subscribe(
        [this](const auto& application) { announceLater(m_terminated, application); }));
    m_worldChanges.push_back(
        events.sessionResigned.subscribe([this] { announceLater(m_resigned); }));
    m_worldChanges.push_back(
        events.sessionBecameActive.subscribe([this] { announceLater(m_becameActive); }));
    m_worldChanges.push_back(events.screensSlept.subscribe([this] { announceLater(m_slept); }));
    m_worldChanges.push_back(events.screensWoke.subscribe([this] { announceLater(m_woke); }));
}

std::optional<RunningApplication> SimulatedWorkspace::frontmostApplication() {
    m_desktop.requireMainThread("frontmostApplication");
    const auto active = m_desktop.activeApplication();
    return active ? runningApplication(*active) : std::nullopt;
}

std::optional<RunningApplication> SimulatedWorkspace::runningApplication(ProcessID process) {
    m_desktop.requireMainThread("runningApplication");
    const auto* application = m_desktop.findApplication(process);
    if (!application)
        return std::nullopt;
    return RunningApplication{application->processID, application->bundleIdentifier};
}

Subscription SimulatedWorkspace::onApplicationActivated(ApplicationCallback callback) {
    m_desktop.requireMainThread("onApplicationActivated");
    return m_activated.subscribe(std::move(callback));
}

Subscription SimulatedWorkspace::onApplicationTerminated(ApplicationCallback callback) {
    m_desktop.requireMainThread("onApplicationTerminated");
    return m_terminated.subscribe(std::move(callback));
}

Subscription SimulatedWorkspace::onSessionResignedActive(Callback callback) {
    m_desktop.requireMainThread("onSessionResignedActive");
    return m_resigned.subscribe(std::move(callback));
}

Subscription SimulatedWorkspace::onSessionBecameActive(Callback callback) {
    m_desktop.requireMainThread("onSessionBecameActive");
    return m_becameActive.subscribe(std::move(callback));
}

Subscription SimulatedWorkspace::onScreensSlept(Callback callback) {
    m_desktop.requireMainThread("onScreensSlept");
    return m_slept.subscribe(std::move(callback));
}

Subscription SimulatedWorkspace::onScreensWoke(Callback callback) {
    m_desktop.requireMainThread("onScreensWoke");
    return m_woke.subscribe(std::move(callback));
}

void SimulatedWorkspace::announceLater(const Signal<RunningApplication>& signal,
                                       const SimulatedApplicationProcess& application) {
    m_scope.post([&signal, running = RunningApplication{application.processID,
                                                        application.bundleIdentifier}] {
        signal.emit(running);
    });
}

void SimulatedWorkspace::announceLater(const Signal<>& signal) {
    m_scope.post([&signal] { signal.emit(); });
}

} // namespace kestrove
