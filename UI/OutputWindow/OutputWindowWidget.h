#pragma once

#include "Async/Signal.h"
#include "UI/OutputWindow/OutputWindowCommands.h"

#include <QWidget>

namespace kestrove {

/// The output window's top level: shows its content over its whole area, tells what the desktop
/// does to it, and has a menu (right click) and keys of its own: Return and Space start, Command+Q
/// quits. Its
/// native window is made with it.
class OutputWindowWidget final : public QWidget {
public:
    OutputWindowWidget(OutputWindowCommands commands, Qt::WindowFlags flags);

    /// `content` stays the caller's; the window lets go of it in time.
    void setContent(QWidget& content);
    /// Takes the content out, so that its owner can destroy it.
    void releaseContent();

    /// Takes the place and the size that the native window has. Qt does so itself, but for one
    /// case: when the window manager refuses what was asked for and keeps what was, it tells
    /// nobody.
    void adoptNativeGeometry();

    Signal<> moved;
    /// What was drawn last is gone, or was never there: the window manager has just put the window
    /// on the desktop, or back in sight.
    Signal<> exposed;
    /// Not by the program: by the user, or by the window manager.
    Signal<> resizedByDesktop;
    /// The desktop has told the size, in pixels, also where it is the one that the program had set.
    Signal<QSize> sizeTold;

protected:
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    OutputWindowCommands m_commands;
    QWidget* m_content = nullptr;
};

} // namespace kestrove
