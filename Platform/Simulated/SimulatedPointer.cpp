#include "Platform/Simulated/SimulatedPointer.h"

#include "Platform/Simulated/SimulatedDesktop.h"

#include <utility>

namespace kestrove {

SimulatedPointer::SimulatedPointer(SimulatedDesktop& desktop)
    : m_desktop(desktop)
    , m_movedOverOthers(desktop.loop())
    , m_movedOverOurs(desktop.loop())
    , m_worldChanges(desktop.events().pointerMoved.subscribe([this] { pointerMoved(); })) {}

Point SimulatedPointer::location() {
    m_desktop.requireMainThread("location");
    return m_desktop.pointer();
}

Subscription SimulatedPointer::addGlobalMovedMonitor(std::function<void()> moved) {
    m_desktop.requireMainThread("addGlobalMovedMonitor");
    return m_movedOverOthers.subscribe(std::move(moved));
}

Subscription SimulatedPointer::addLocalMovedMonitor(std::function<void()> moved) {
    m_desktop.requireMainThread("addLocalMovedMonitor");
    return m_movedOverOurs.subscribe(std::move(moved));
}

void SimulatedPointer::pointerMoved() {
    const auto* window = m_desktop.windowAt(m_desktop.flipped(m_desktop.pointer()));
    const auto isOurs = window && window->processID == m_desktop.ownProcess();
    (isOurs ? m_movedOverOurs : m_movedOverOthers).raise();
}

} // namespace kestrove
