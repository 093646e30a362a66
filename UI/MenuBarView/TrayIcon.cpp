#include "UI/MenuBarView/TrayIcon.h"

#include "UI/MenuBarView/MenuBarIconLabel.h"

#include <QCursor>
#include <QMenu>

namespace kestrove {

TrayIcon::TrayIcon(QMenu& menu)
    : m_icon(menuBarIconLabel()) {
    m_icon.setToolTip(QStringLiteral("Kestrove"));
    // The host, or Qt in its place, opens it on a click with the right button.
    m_icon.setContextMenu(&menu);
    QObject::connect(&m_icon, &QSystemTrayIcon::activated, &m_icon,
                     [this, &menu](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger)
                             popup(menu);
                     });
    m_icon.show();
}

bool TrayIcon::hasTray() {
    return QSystemTrayIcon::isSystemTrayAvailable();
}

void TrayIcon::popup(QMenu& menu) const {
    // Hosts of the newer kind keep to themselves where the icon is; the click was on it.
    const auto icon = m_icon.geometry();
    menu.popup(icon.isEmpty() ? QCursor::pos() : icon.bottomLeft());
}

} // namespace kestrove
