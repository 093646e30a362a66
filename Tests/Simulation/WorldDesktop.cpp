// What happens on the desktop, whatever the program does.
#include "Tests/Simulation/World.h"

#include <algorithm>
#include <string>
#include <utility>

namespace kestrove::simulation {

namespace {

constexpr std::size_t mostDisplays = 4;
constexpr std::size_t mostWindows = 12;
constexpr std::size_t mostApplications = 5;

SimulatedColor someColor(std::uint32_t number) {
    return {static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(number >> 4U), 90};
}

} // namespace

void World::applyToDisplays(const Step& step) {
    const auto& displays = m_desktop.displays();
    if (step.kind == StepKind::plugDisplay) {
        if (displays.size() >= mostDisplays)
            return;
        double right = 0;
        for (const auto& display : displays)
            right = std::max(right, display.frame.x + display.frame.width);
        // Sometimes one that was there before.
        DisplayID number = 1 + step.a % m_nextDisplay;
        if (m_desktop.findDisplay(number))
            number = m_nextDisplay++;
        m_nextDisplay = std::max(m_nextDisplay, number + 1);
        m_desktop.addDisplay({.displayID = number,
                              .frame = {right, 0, step.b % 2 ? 1280.0 : 1600.0, 900},
                              .scale = step.b % 3 ? 1.0 : 2.0});
    } else if (step.kind == StepKind::unplugDisplay) {
        if (!displays.empty())
            m_desktop.removeDisplay(pick(displays, step.a).displayID);
    } else if (!displays.empty()) {
        auto display = pick(displays, step.a);
        display.frame.height = step.b % 2 ? 900 : 1080;
        display.scale = step.b % 3 ? 1.0 : 2.0;
        m_desktop.setDisplay(display);
    }
}

void World::applyToApplications(const Step& step) {
    if (step.kind == StepKind::launchApplication) {
        if (m_applications.size() >= mostApplications)
            return;
        // One of a few programs; sometimes under the process number of one that has ended.
        const auto program = std::to_string(step.a % 3);
        ProcessID number = step.b % 4 == 0 ? 2000 + static_cast<ProcessID>(step.a % 4) : 0;
        if (number != 0 && m_desktop.findApplication(number))
            number = 0;
        if (number == 0) // beyond all that were given out under a number
            number = 3000 + static_cast<ProcessID>(step.b);
        if (m_desktop.findApplication(number))
            return;
        m_applications.push_back(m_desktop.launchApplication(
            {.processID = number,
             .bundleIdentifier =
                 step.a % 5 ? std::optional("org.example." + program) : std::nullopt,
             .name = "Program " + program}));
    } else if (!m_applications.empty()) {
        const auto process = pick(m_applications, step.a);
        std::erase(m_applications, process);
        for (const auto& window : m_desktop.windows())
            if (window.processID == process)
                m_closedWindows.push_back(window);
        m_desktop.terminateApplication(process);
    }
}

std::vector<WindowID> World::foreignWindows() const {
    std::vector<WindowID> windows;
    for (const auto& window : m_desktop.windows())
        if (window.processID != m_desktop.ownProcess())
            windows.push_back(window.windowID);
    return windows;
}

void World::applyToWindows(const Step& step) {
    const auto windows = foreignWindows();
    if (step.kind == StepKind::openWindow) {
        if (windows.size() < mostWindows && !m_applications.empty())
            m_desktop.openWindow({.processID = pick(m_applications, step.a),
                                  .title = "Document " + std::to_string(step.b % 7),
                                  .frame = {step.a % 2000 * 1.0, step.b % 600 * 1.0, 640, 480},
                                  .color = someColor(step.b)});
        return;
    }
    if (step.kind == StepKind::reopenWindow) {
        if (m_closedWindows.empty() || m_applications.empty())
            return;
        auto window = pick(m_closedWindows, step.a);
        if (m_desktop.findWindow(window.windowID))
            return;
        if (!m_desktop.findApplication(window.processID))
            window.processID = pick(m_applications, step.b);
        m_desktop.openWindow(window);
        return;
    }
    if (windows.empty())
        return;
    const auto number = pick(windows, step.a);
    auto window = *m_desktop.findWindow(number);
    switch (step.kind) {
    case StepKind::closeWindow:
        m_closedWindows.push_back(window);
        m_desktop.closeWindow(number);
        return;
    case StepKind::raiseWindow:
        m_desktop.raiseWindow(number);
        if (window.processID != 0 && m_desktop.findApplication(window.processID))
            m_desktop.activateApplication(window.processID);
        return;
    case StepKind::showOrHideWindow:
        window.isOnScreen = !window.isOnScreen;
        break;
    case StepKind::moveWindow:
        window.frame.x = step.b % 3000 - 200.0;
        window.frame.width = 200 + step.b % 900;
        break;
    case StepKind::paintWindow:
        window.color = someColor(step.b);
        break;
    default:
        window.title = "Document " + std::to_string(step.b);
        break;
    }
    m_desktop.setWindow(window);
}

Point World::somePointOnADisplay(const Step& step) const {
    const auto& frame = pick(m_desktop.displays(), step.a).frame;
    return {frame.x + 1 + step.b % 1000, frame.y + 1 + step.b % 800};
}

void World::applyToSession(const Step& step) {
    switch (step.kind) {
    case StepKind::movePointer:
        if (!m_desktop.displays().empty())
            m_desktop.movePointer(somePointOnADisplay(step));
        return;
    case StepKind::focusApplication:
        if (!m_applications.empty())
            m_desktop.activateApplication(pick(m_applications, step.a));
        return;
    case StepKind::focusNothing:
        m_desktop.activateApplication({});
        return;
    case StepKind::focusProgram:
        m_desktop.activateApplication(m_desktop.ownProcess());
        return;
    case StepKind::resignSession:
        m_desktop.resignSession();
        return;
    case StepKind::becomeSession:
        m_desktop.becomeSession();
        return;
    case StepKind::sleepScreens:
        m_desktop.sleepScreens();
        return;
    case StepKind::wakeScreens:
        m_desktop.wakeScreens();
        return;
    case StepKind::withdrawPermission:
        m_desktop.setRecordingAllowed(false);
        return;
    case StepKind::givePermission:
        m_desktop.setRecordingAllowed(true);
        return;
    default:
        m_program->access().setUserGrants(step.a % 2 == 0);
        return;
    }
}

} // namespace kestrove::simulation
