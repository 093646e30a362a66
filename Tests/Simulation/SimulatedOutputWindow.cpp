#include "Tests/Simulation/SimulatedOutputWindow.h"

namespace kestrove::simulation {

namespace {

constexpr double titleBar = 30;

} // namespace

SimulatedContainerView::~SimulatedContainerView() {
    showPlaceholder();
    m_desktop.views().destroyView(m_view);
}

void SimulatedContainerView::showContent(ContainerView& content) {
    showPlaceholder();
    m_content = &content;
    content.displayLayer().setHost(m_view);
}

void SimulatedContainerView::showPlaceholder() {
    if (m_content)
        m_content->displayLayer().setHost(0);
    m_content = nullptr;
}

SimulatedOutputWindow::SimulatedOutputWindow(SimulatedDesktop& desktop, const Rect& content)
    : m_desktop(desktop)
    , m_frame(frameRect(content))
    , m_window(desktop.openWindow({.processID = desktop.ownProcess(),
                                   .title = "kestrove",
                                   .frame = desktop.flipped(m_frame),
                                   .isOnScreen = false,
                                   .color = {255, 0, 255}})) {}

SimulatedOutputWindow::~SimulatedOutputWindow() {
    m_desktop.closeWindow(m_window);
}

void SimulatedOutputWindow::setFrame(const Rect& frame, Redisplay /*redisplay*/) {
    m_frame = frame;
    m_desktop.moveWindow(m_window, m_desktop.flipped(frame));
}

Rect SimulatedOutputWindow::contentRect(const Rect& frame) const {
    return {frame.x, frame.y, frame.width, frame.height - titleBar};
}

Rect SimulatedOutputWindow::frameRect(const Rect& content) const {
    return {content.x, content.y, content.width, content.height + titleBar};
}

void SimulatedOutputWindow::show() {
    auto window = *m_desktop.findWindow(m_window);
    window.isOnScreen = true;
    m_desktop.setWindow(window);
    m_desktop.raiseWindow(m_window);
    m_isMiniaturized = false;
}

void SimulatedOutputWindow::makeKeyAndOrderFront() {
    show();
    m_desktop.activateApplication(m_desktop.ownProcess());
}

void SimulatedOutputWindow::orderFrontRegardless() {
    show();
}

void SimulatedOutputWindow::setTitle(std::string_view title) {
    auto window = *m_desktop.findWindow(m_window);
    window.title = std::string(title);
    m_desktop.setWindow(window);
}

void SimulatedOutputWindow::resizeByHand(const Rect& frame) {
    setFrame(frame, Redisplay::yes);
    m_liveResizeEnded.emit();
}

} // namespace kestrove::simulation
