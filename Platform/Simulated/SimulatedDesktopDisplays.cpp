// The displays of a simulated desktop, and its two coordinate systems.
#include "Platform/Simulated/Misuse.h"
#include "Platform/Simulated/SimulatedDesktop.h"

#include <algorithm>
#include <utility>

namespace kestrove {

namespace {

Rect shifted(Rect rect, Point by) {
    return {rect.x - by.x, rect.y - by.y, rect.width, rect.height};
}

} // namespace

void SimulatedDesktop::addDisplay(SimulatedDisplay display) {
    requireMainThread("addDisplay");
    if (findDisplay(display.displayID))
        abortOnMisuse("two displays of one identifier");
    m_displays.push_back(std::move(display));
    requireMainDisplayAtOrigin();
    m_events.screensChanged.emit();
    m_events.changed.emit();
}

void SimulatedDesktop::removeDisplay(DisplayID display) {
    requireMainThread("removeDisplay");
    const auto removed = requireDisplay(display);
    const auto oldMainHeight = m_displays.front().frame.height;
    m_displays.erase(removed);
    if (!m_displays.empty()) {
        moveOrigin(oldMainHeight);
        keepPointerOnDisplay();
    }
    m_events.screensChanged.emit();
    m_events.changed.emit();
}

void SimulatedDesktop::setDisplay(SimulatedDisplay display) {
    requireMainThread("setDisplay");
    auto& place = *requireDisplay(display.displayID);
    if (std::exchange(place, display) == display)
        return;
    requireMainDisplayAtOrigin();
    m_events.screensChanged.emit();
    m_events.changed.emit();
}

const SimulatedDisplay* SimulatedDesktop::findDisplay(DisplayID display) const {
    const auto found = std::ranges::find(m_displays, display, &SimulatedDisplay::displayID);
    return found == m_displays.end() ? nullptr : &*found;
}

std::vector<SimulatedDisplay>::iterator SimulatedDesktop::requireDisplay(DisplayID display) {
    const auto found = std::ranges::find(m_displays, display, &SimulatedDisplay::displayID);
    if (found == m_displays.end())
        abortOnMisuse("no such display");
    return found;
}

void SimulatedDesktop::requireMainDisplayAtOrigin() const {
    if (m_displays.front().frame.origin() != Point{0, 0})
        abortOnMisuse("a main display that does not start at 0, 0");
}

Rect SimulatedDesktop::flipped(Rect rect) const {
    const auto height = m_displays.empty() ? 0 : m_displays.front().frame.height;
    return {rect.x, height - rect.maxY(), rect.width, rect.height};
}

Point SimulatedDesktop::flipped(Point point) const {
    const auto height = m_displays.empty() ? 0 : m_displays.front().frame.height;
    return {point.x, height - point.y};
}

// Nothing moves on the glass: only what coordinates are counted from does.
void SimulatedDesktop::moveOrigin(double oldMainHeight) {
    const auto main = m_displays.front().frame;
    for (auto& display : m_displays) {
        display.frame = shifted(display.frame, main.origin());
        if (display.visibleFrame)
            display.visibleFrame = shifted(*display.visibleFrame, main.origin());
    }
    for (auto& window : m_windows)
        window.frame = shifted(window.frame, {main.x, oldMainHeight - main.maxY()});
    m_pointer = {m_pointer.x - main.x, m_pointer.y - main.y};
}

// A pointer never stays where no display is.
void SimulatedDesktop::keepPointerOnDisplay() {
    const auto holdsPointer = [&](const auto& display) {
        return display.frame.contains(m_pointer);
    };
    if (std::ranges::any_of(m_displays, holdsPointer))
        return;
    m_pointer = m_displays.front().frame.center();
    m_events.pointerMoved.emit();
}

} // namespace kestrove
