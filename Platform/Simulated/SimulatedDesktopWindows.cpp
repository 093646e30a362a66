// The windows of a simulated desktop.
#include "Platform/Simulated/Misuse.h"
#include "Platform/Simulated/SimulatedDesktop.h"

#include <algorithm>
#include <utility>

namespace kestrove {

WindowID SimulatedDesktop::openWindow(SimulatedWindow window) {
    requireMainThread("openWindow");
    if (window.windowID == 0)
        window.windowID = m_nextWindow++;
    if (findWindow(window.windowID))
        abortOnMisuse("two windows of one number");
    if (window.processID != 0 && !findApplication(window.processID))
        abortOnMisuse("a window of an application that does not run");
    const auto number = window.windowID;
    m_windows.insert(m_windows.begin(), std::move(window));
    m_events.changed.emit();
    return number;
}

void SimulatedDesktop::closeWindow(WindowID window) {
    requireMainThread("closeWindow");
    m_windows.erase(requireWindow(window));
    m_events.changed.emit();
}

void SimulatedDesktop::setWindow(SimulatedWindow window) {
    requireMainThread("setWindow");
    auto& place = *requireWindow(window.windowID);
    if (std::exchange(place, window) != window)
        m_events.changed.emit();
}

void SimulatedDesktop::moveWindow(WindowID window, Rect frame) {
    auto changed = *requireWindow(window);
    changed.frame = frame;
    setWindow(std::move(changed));
}

void SimulatedDesktop::paintWindow(WindowID window, SimulatedColor color) {
    auto changed = *requireWindow(window);
    changed.color = color;
    setWindow(std::move(changed));
}

void SimulatedDesktop::raiseWindow(WindowID window) {
    requireMainThread("raiseWindow");
    const auto place = requireWindow(window);
    std::rotate(m_windows.begin(), place, place + 1);
    m_events.changed.emit();
}

const SimulatedWindow* SimulatedDesktop::findWindow(WindowID window) const {
    const auto found = std::ranges::find(m_windows, window, &SimulatedWindow::windowID);
    return found == m_windows.end() ? nullptr : &*found;
}

std::vector<SimulatedWindow>::iterator SimulatedDesktop::requireWindow(WindowID window) {
    const auto found = std::ranges::find(m_windows, window, &SimulatedWindow::windowID);
    if (found == m_windows.end())
        abortOnMisuse("no such window");
    return found;
}

void SimulatedDesktop::setWindowListReadable(bool isReadable) {
    requireMainThread("setWindowListReadable");
    m_isWindowListReadable = isReadable;
}

const SimulatedWindow* SimulatedDesktop::windowAt(Point point) const {
    const auto found = std::ranges::find_if(m_windows, [&](const auto& window) {
        return window.isOnScreen && window.frame.contains(point);
    });
    return found == m_windows.end() ? nullptr : &*found;
}

} // namespace kestrove
