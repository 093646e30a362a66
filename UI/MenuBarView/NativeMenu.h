#pragma once

#include "Async/Subscription.h"
#include "UI/MenuBarView/NativeMenuEntries.h"

#include <QActionGroup>
#include <QMenu>

#include <map>
#include <string>

namespace kestrove {

/// The menu as one of the desktop's own kind: what a tray shows that knows nothing else, and the
/// output window's context menu. It follows the content while it is open too; entries that stay
/// keep their place under the pointer and the keyboard.
///
/// Thread: main. `view` outlives it.
class NativeMenu {
public:
    explicit NativeMenu(MenuBarView& view);

    [[nodiscard]] QMenu& menu() { return m_menu; }

private:
    struct Shown {
        NativeMenuEntry entry;
        QAction* action;
    };

    void update();
    void removeAllBut(const std::vector<NativeMenuEntry>& entries);
    [[nodiscard]] Shown& shown(const NativeMenuEntry& entry);
    void apply(QAction& action, const NativeMenuEntry& entry) const;
    void triggered(const std::string& key);

    MenuBarView& m_view;
    QMenu m_menu;
    QActionGroup m_followModes;
    std::map<std::string, Shown> m_shown;
    Subscription m_changed;
};

} // namespace kestrove
