#include "UI/OutputWindow/OutputWindowWidget.h"

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QWindow>

#include <utility>

namespace kestrove {

OutputWindowWidget::OutputWindowWidget(OutputWindowCommands commands, Qt::WindowFlags flags)
    : QWidget(nullptr, flags)
    , m_commands(std::move(commands)) {
    // Until the content has drawn: no flash of the desktop's window colour in front of everybody.
    setAutoFillBackground(true);
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    // A menu that closes gives the keyboard back to whichever widget had it; there must be one.
    setFocusPolicy(Qt::StrongFocus);
    setFocus();
    // Other programs know the native window by its number: it is there from now on.
    winId();
    windowHandle()->installEventFilter(this);
}

void OutputWindowWidget::setContent(QWidget& content) {
    releaseContent();
    m_content = &content;
    content.setParent(this);
    content.setGeometry(rect());
    content.show();
}

void OutputWindowWidget::releaseContent() {
    if (auto* const content = std::exchange(m_content, nullptr))
        content->setParent(nullptr);
}

void OutputWindowWidget::adoptNativeGeometry() {
    // By the events that were missed: setting the geometry would ask the window manager once more.
    auto* const native = windowHandle();
    if (isVisible() && native->geometry().topLeft() != geometry().topLeft()) {
        QMoveEvent missed(native->geometry().topLeft(), geometry().topLeft());
        QCoreApplication::sendEvent(native, &missed);
    }
    if (isVisible() && native->geometry().size() != size()) {
        QResizeEvent missed(native->geometry().size(), size());
        QCoreApplication::sendEvent(native, &missed);
    }
}

void OutputWindowWidget::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    moved.emit();
}

void OutputWindowWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (m_content)
        m_content->setGeometry(rect());
    if (event->spontaneous())
        resizedByDesktop.emit();
}

bool OutputWindowWidget::eventFilter(QObject* watched, QEvent* event) {
    // It comes also when the window leaves the desktop.
    if (event->type() == QEvent::Expose && windowHandle()->isExposed())
        exposed.emit();
    if (event->type() == QEvent::Resize)
        sizeTold.emit(static_cast<QResizeEvent*>(event)->size());
    return QWidget::eventFilter(watched, event);
}

void OutputWindowWidget::closeEvent(QCloseEvent* event) {
    // Accepted, it would take the native window along, and the number with it by which other
    // programs know it.
    event->ignore();
    hide();
    m_commands.windowClosed();
}

void OutputWindowWidget::contextMenuEvent(QContextMenuEvent* event) {
    m_commands.menu().popup(event->globalPos());
}

void OutputWindowWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    // A second right click soon after the first asks for the menu too; Qt counts it otherwise.
    if (event->button() == Qt::RightButton)
        m_commands.menu().popup(event->globalPosition().toPoint());
}

void OutputWindowWidget::keyPressEvent(QKeyEvent* event) {
    const auto key = event->key();
    const bool starts = key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space;
    // Command+Q, as the menu names it, and what desktops here quit by.
    const auto keys = event->keyCombination();
    const bool quits = keys == QKeyCombination(Qt::META, Qt::Key_Q) ||
                       keys == QKeyCombination(Qt::CTRL, Qt::Key_Q);
    const bool opensMenu = keys == QKeyCombination(Qt::SHIFT, Qt::Key_F10); // Qt knows Menu only
    if (starts && !event->isAutoRepeat() && !m_commands.isSharing())
        m_commands.start();
    else if (quits)
        m_commands.quit();
    else if (opensMenu)
        m_commands.menu().popup(mapToGlobal(rect().center()));
    else
        QWidget::keyPressEvent(event);
}

} // namespace kestrove
