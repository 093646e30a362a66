#pragma once

#include <QSystemTrayIcon>

class QMenu;

namespace kestrove {

/// The application's place in the tray, by StatusNotifierItem where the session has a host for it,
/// else by XEmbed; then also in a tray that starts later. Any click opens the menu.
///
/// Thread: main. `menu` outlives it.
class TrayIcon {
public:
    explicit TrayIcon(QMenu& menu);

    /// Whether there is a tray now: without one, nobody sees the icon.
    [[nodiscard]] static bool hasTray();

private:
    void popup(QMenu& menu) const;

    QSystemTrayIcon m_icon;
};

} // namespace kestrove
