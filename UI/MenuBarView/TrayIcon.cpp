#include "UI/MenuBarView/TrayIcon.h"

#include "UI/MenuBarView/MenuBarIconLabel.h"

#include <QApplication>
#include <QCursor>
#include <QMenu>
#include <QMouseEvent>
#include <QWidget>

#include <utility>

namespace kestrove {

TrayIcon::TrayIcon(QMenu& menu, std::function<void(QRect)> openPanel)
    : m_icon(menuBarIconLabel()) {
    m_icon.setToolTip(QStringLiteral("Kestrove"));
    // The host, or Qt in its place, opens it on a click with the right button.
    m_icon.setContextMenu(&menu);
    connect(&m_icon, &QSystemTrayIcon::activated, this,
            [this, open = std::move(openPanel)](QSystemTrayIcon::ActivationReason reason) {
                // Some hosts tell of a second click soon after the first as one more kind.
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
                    open(place());
            });
    show();
}

void TrayIcon::show() {
    const auto before = QApplication::topLevelWidgets();
    m_icon.show();
    // What Qt puts into a tray of the older kind is a widget that it keeps to itself.
    for (auto* const widget : QApplication::topLevelWidgets()) {
        if (!before.contains(widget))
            widget->installEventFilter(this);
    }
}

bool TrayIcon::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::MouseButtonDblClick)
        return QObject::eventFilter(watched, event);
    // Qt's icon takes it for half of a double click, and with the right button does nothing at all.
    // To us each click is one.
    const auto& second = static_cast<const QMouseEvent&>(*event);
    QMouseEvent press(QEvent::MouseButtonPress, second.position(), second.scenePosition(),
                      second.globalPosition(), second.button(), second.buttons(),
                      second.modifiers(), second.pointingDevice());
    QCoreApplication::sendEvent(watched, &press);
    return true;
}

bool TrayIcon::hasTray() {
    return QSystemTrayIcon::isSystemTrayAvailable();
}

QRect TrayIcon::place() const {
    // Hosts of the newer kind keep to themselves where the icon is; the click was on it.
    const auto icon = m_icon.geometry();
    return icon.isEmpty() ? QRect(QCursor::pos(), QSize(1, 1)) : icon;
}

} // namespace kestrove
