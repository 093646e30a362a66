#include "UI/CommandMenu/CommandMenu.h"

#include "UI/CommandMenu/CommandMenuContent.h"
#include "UI/MenuBarView/MenuBarView.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <utility>

namespace kestrove {

namespace {

/// One that the user works in, and not a menu or a tip in front of one.
bool isWindowOfItsOwn(const QWidget& widget) {
    const auto type = widget.windowType();
    return widget.isWindow() && (type == Qt::Window || type == Qt::Dialog);
}

} // namespace

CommandMenu::CommandMenu(MenuBarView& view, std::function<MenuShortcutTexts()> boundShortcuts)
    : m_view(view)
    , m_boundShortcuts(std::move(boundShortcuts))
    , m_open(new QAction(this))
    , m_quit(new QAction(this)) {
    m_menu.setAccessibleName(QStringLiteral("画面共有"));
    m_open->setShortcut(Qt::Key_F10);
    connect(m_open, &QAction::triggered, this, [this] { open(); });
    m_quit->setShortcuts({QKeySequence(Qt::META | Qt::Key_Q), QKeySequence(Qt::CTRL | Qt::Key_Q)});
    connect(m_quit, &QAction::triggered, this, [this] { m_view.run(MenuCommand::quit); });
    m_changed = view.onChanged([this] { update(); });
    update();
    qApp->installEventFilter(this);
}

bool CommandMenu::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) {
        auto* const widget = qobject_cast<QWidget*>(watched);
        if (widget != nullptr && isWindowOfItsOwn(*widget))
            widget->addActions({m_open, m_quit});
    }
    return QObject::eventFilter(watched, event);
}

void CommandMenu::update() {
    const auto entries = commandMenuContent(m_view.state(), m_boundShortcuts());
    // Entries stay where they are: what is chosen in the open menu stays chosen.
    while (m_menu.actions().size() < static_cast<qsizetype>(entries.size())) {
        auto* const action = m_menu.addAction(QString());
        connect(action, &QAction::triggered, this,
                [this, action] { m_view.run(static_cast<MenuCommand>(action->data().toInt())); });
    }
    for (qsizetype place = 0; const auto& entry : entries) {
        auto& action = *m_menu.actions().at(place++);
        action.setSeparator(!entry);
        if (!entry)
            continue;
        action.setText(QString::fromStdString(entry->label()));
        action.setEnabled(entry->isEnabled);
        action.setData(std::to_underlying(entry->command));
    }
}

void CommandMenu::open() {
    const auto* const window = QApplication::activeWindow();
    if (window == nullptr)
        return;
    // What is in force may have changed without any change of the settings.
    update();
    m_menu.popup(window->mapToGlobal(QPoint(0, 0)));
    m_menu.setActiveAction(m_menu.actions().constFirst());
}

} // namespace kestrove
