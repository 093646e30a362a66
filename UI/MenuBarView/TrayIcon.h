#pragma once

#include <QObject>
#include <QRect>
#include <QSystemTrayIcon>

#include <functional>

class QMenu;

namespace kestrove {

/// The application's place in the tray, by StatusNotifierItem where the session has a host for it,
/// else by XEmbed; then also in a tray that starts later. A click opens the panel, one with the
/// right button the menu; a host that knows nothing but menus shows the menu for both.
///
/// Thread: main. `menu` outlives it.
class TrayIcon final : public QObject {
public:
    /// `openPanel` is told where the icon is, in pixels of the desktop.
    TrayIcon(QMenu& menu, std::function<void(QRect icon)> openPanel);

    /// Whether there is a tray now: without one, nobody sees the icon.
    [[nodiscard]] static bool hasTray();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void show();
    [[nodiscard]] QRect place() const;

    QSystemTrayIcon m_icon;
};

} // namespace kestrove
