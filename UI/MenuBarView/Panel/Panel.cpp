#include "UI/MenuBarView/Panel/Panel.h"

#include "UI/MenuBarView/MenuBarView.h"
#include "UI/MenuBarView/Panel/PanelFrame.h"

#include <utility>

namespace kestrove {

Panel::Panel(MenuBarView& view, std::function<void(QWidget&)> bringToFront)
    : m_view(view)
    , m_bringToFront(std::move(bringToFront)) {}

Panel::~Panel() {
    delete m_widget;
}

void Panel::close() {
    // A window that was closed lives on until the main loop deletes it.
    delete m_widget;
}

void Panel::openAt(QRect anchor) {
    close();
    m_view.willOpen();
    m_widget = new PanelFrame(m_view, anchor);
    m_widget->show();
}

void Panel::openWindow() {
    const auto* const frame = static_cast<PanelFrame*>(m_widget.data());
    if (frame != nullptr && (frame->isPopup() || !frame->isVisible()))
        close();
    m_view.willOpen();
    if (!m_widget)
        m_widget = new PanelFrame(m_view, std::nullopt);
    m_widget->setWindowState(m_widget->windowState() & ~Qt::WindowMinimized);
    m_widget->show();
    m_widget->raise();
    m_widget->activateWindow();
    if (m_bringToFront)
        m_bringToFront(*m_widget);
}

} // namespace kestrove
