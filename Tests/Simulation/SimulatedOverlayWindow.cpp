#include "Tests/Simulation/SimulatedOverlayWindow.h"

namespace kestrove::simulation {

namespace {

constexpr int floatingLayer = 25;

} // namespace

SimulatedOverlayWindow::SimulatedOverlayWindow(SimulatedDesktop& desktop)
    : m_desktop(desktop)
    , m_window(desktop.openWindow({.processID = desktop.ownProcess(),
                                   .layer = floatingLayer,
                                   .isOnScreen = false,
                                   .color = {0, 255, 0}})) {}

SimulatedOverlayWindow::~SimulatedOverlayWindow() {
    m_desktop.closeWindow(m_window);
}

bool SimulatedOverlayWindow::isVisible() const {
    return m_desktop.findWindow(m_window)->isOnScreen;
}

void SimulatedOverlayWindow::setFrame(const Rect& frame) {
    const auto flipped = m_desktop.flipped(frame);
    m_frame = frame;
    if (m_desktop.findWindow(m_window)->frame != flipped)
        m_desktop.moveWindow(m_window, flipped);
}

void SimulatedOverlayWindow::orderFrontRegardless() {
    setOnScreen(true);
    m_desktop.raiseWindow(m_window);
}

void SimulatedOverlayWindow::orderOut() {
    if (isVisible())
        setOnScreen(false);
}

void SimulatedOverlayWindow::setOnScreen(bool isOnScreen) {
    auto window = *m_desktop.findWindow(m_window);
    window.isOnScreen = isOnScreen;
    m_desktop.setWindow(window);
}

} // namespace kestrove::simulation
