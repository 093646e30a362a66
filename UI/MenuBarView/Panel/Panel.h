#pragma once

#include <QPointer>
#include <QRect>
#include <QWidget>

#include <functional>

namespace kestrove {

class MenuBarView;

/// The panel: opened at the tray icon, where it goes away with a click elsewhere, with Escape or
/// with a command that opens something else; or as a window of its own, which stays. Made when it
/// is opened, and gone when it is closed.
///
/// Thread: main. `view` outlives it.
class Panel {
public:
    /// `bringToFront` is told the window of its own that was shown, for desktops that need more
    /// than Qt's own way; may be empty.
    Panel(MenuBarView& view, std::function<void(QWidget& window)> bringToFront);
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;
    ~Panel();

    /// At what was clicked, in pixels of the desktop, on the screen where that is.
    void openAt(QRect anchor);
    /// For desktops without a tray, and for everybody who starts the application once more.
    void openWindow();
    /// Null while it is closed.
    [[nodiscard]] QWidget* widget() const { return m_widget; }

private:
    void close();

    MenuBarView& m_view;
    std::function<void(QWidget&)> m_bringToFront;
    QPointer<QWidget> m_widget;
};

} // namespace kestrove
