#pragma once

#include "Async/Subscription.h"
#include "UI/MenuBarView/MenuState.h"

#include <QMenu>
#include <QObject>

#include <functional>

class QAction;

namespace kestrove {

class MenuBarView;

/// The session's commands in every window of ours, whichever is active: F10, the key of the menu
/// bar, opens them at the window's corner, and Command+Q or Control+Q quits. No menu bar is drawn:
/// the output window shows the source alone, as others see it.
///
/// Thread: main, that of the QApplication. `view` outlives it.
class CommandMenu final : public QObject {
public:
    /// `boundShortcuts` is asked whenever the content is: how the shortcuts in force are shown.
    CommandMenu(MenuBarView& view, std::function<MenuShortcutTexts()> boundShortcuts);

    [[nodiscard]] QMenu& menu() { return m_menu; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void update();
    void open();

    MenuBarView& m_view;
    std::function<MenuShortcutTexts()> m_boundShortcuts;
    QMenu m_menu;
    QAction* m_open;
    QAction* m_quit;
    Subscription m_changed;
};

} // namespace kestrove
