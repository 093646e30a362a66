#include "Platform/Simulated/SimulatedDesktop.h"

#include "Platform/Simulated/Misuse.h"

#include <algorithm>
#include <utility>

namespace kestrove {

SimulatedDesktop::SimulatedDesktop(SimulatedMainLoop& loop)
    : m_loop(loop)
    , m_capture(*this)
    , m_keyboard(*this)
    , m_defaults(*this)
    , m_views(*this) {
    m_applications.push_back({.processID = m_ownProcess,
                              .bundleIdentifier = "io.github.kestrove.Kestrove",
                              .name = "kestrove"});
}

ProcessID SimulatedDesktop::launchApplication(SimulatedApplicationProcess application) {
    requireMainThread("launchApplication");
    if (application.processID == 0)
        application.processID = m_nextProcess++;
    if (findApplication(application.processID))
        abortOnMisuse("two applications of one process");
    m_applications.push_back(application);
    return application.processID;
}

void SimulatedDesktop::terminateApplication(ProcessID process) {
    requireMainThread("terminateApplication");
    const auto* known = findApplication(process);
    if (!known)
        abortOnMisuse("terminating an application that does not run");
    const auto application = *known;
    std::erase(m_applications, application);
    std::erase_if(m_windows, [&](const auto& window) { return window.processID == process; });
    if (m_activeApplication == process)
        m_activeApplication.reset();
    m_events.applicationTerminated.emit(application);
    m_events.changed.emit();
}

void SimulatedDesktop::activateApplication(std::optional<ProcessID> process) {
    requireMainThread("activateApplication");
    if (process && !findApplication(*process))
        abortOnMisuse("activating an application that does not run");
    if (std::exchange(m_activeApplication, process) == process || !process)
        return;
    m_events.applicationActivated.emit(SimulatedApplicationProcess(*findApplication(*process)));
}

const SimulatedApplicationProcess* SimulatedDesktop::findApplication(ProcessID process) const {
    const auto found =
        std::ranges::find(m_applications, process, &SimulatedApplicationProcess::processID);
    return found == m_applications.end() ? nullptr : &*found;
}

void SimulatedDesktop::setOwnBundleIdentifier(std::optional<std::string> identifier) {
    requireMainThread("setOwnBundleIdentifier");
    m_applications.front().bundleIdentifier = std::move(identifier);
}

void SimulatedDesktop::movePointer(Point to) {
    requireMainThread("movePointer");
    if (to == m_pointer)
        return;
    m_pointer = to;
    m_events.pointerMoved.emit();
    m_events.changed.emit();
}

void SimulatedDesktop::resignSession() {
    requireMainThread("resignSession");
    m_events.sessionResigned.emit();
}

void SimulatedDesktop::becomeSession() {
    requireMainThread("becomeSession");
    m_events.sessionBecameActive.emit();
}

void SimulatedDesktop::sleepScreens() {
    requireMainThread("sleepScreens");
    m_events.screensSlept.emit();
}

void SimulatedDesktop::wakeScreens() {
    requireMainThread("wakeScreens");
    m_events.screensWoke.emit();
}

void SimulatedDesktop::setRecordingAllowed(bool isAllowed) {
    requireMainThread("setRecordingAllowed");
    m_isRecordingAllowed = isAllowed;
    m_events.changed.emit();
}

} // namespace kestrove
