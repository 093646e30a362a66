#include "UI/MenuBarView/NativeMenu.h"

#include "UI/Icons/SymbolIcon.h"
#include "UI/MenuBarView/MenuBarView.h"

#include <QFontMetrics>

#include <algorithm>

namespace kestrove {

namespace {

/// Titles of windows can be longer than a screen is wide.
constexpr int longestText = 360; // pixels

using Kind = NativeMenuEntry::Kind;

/// As a menu takes it, where some characters mean something.
QString menuText(const NativeMenuEntry& entry, const QFontMetrics& metrics) {
    const bool mayBeCut = entry.kind == Kind::checkBox;
    auto text = QString::fromStdString(entry.text);
    if (mayBeCut)
        text = metrics.elidedText(text.simplified(), Qt::ElideRight, longestText);
    text += QString::fromStdString(entry.ending);
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

} // namespace

NativeMenu::NativeMenu(MenuBarView& view)
    : m_view(view)
    , m_followModes(nullptr) {
    // None of them is chosen while the user's own picks are shared.
    m_followModes.setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    m_menu.setToolTipsVisible(true);
    QObject::connect(&m_menu, &QMenu::aboutToShow, &m_menu, [this] { m_view.willOpen(); });
    m_changed = view.onChanged([this] { update(); });
    update();
}

void NativeMenu::update() {
    const auto entries = nativeMenuEntries(m_view.content(), m_view);
    removeAllBut(entries);
    for (qsizetype place = 0; const auto& entry : entries) {
        auto& [last, action] = shown(entry);
        const auto there = m_menu.actions().value(place, nullptr);
        if (there != action) {
            m_menu.removeAction(action);
            m_menu.insertAction(there, action);
        }
        apply(*action, entry);
        last = entry;
        ++place;
    }
}

void NativeMenu::removeAllBut(const std::vector<NativeMenuEntry>& entries) {
    std::erase_if(m_shown, [&](const auto& each) {
        const auto isThis = [&](const NativeMenuEntry& entry) { return entry.key == each.first; };
        if (std::ranges::any_of(entries, isThis))
            return false;
        auto* const action = each.second.action;
        m_menu.removeAction(action);
        // Perhaps it is the very one that the user has just clicked.
        action->deleteLater();
        return true;
    });
}

NativeMenu::Shown& NativeMenu::shown(const NativeMenuEntry& entry) {
    if (const auto known = m_shown.find(entry.key); known != m_shown.end())
        return known->second;
    auto* const action = new QAction(&m_menu);
    action->setSeparator(entry.kind == Kind::separator);
    action->setCheckable(entry.kind == Kind::checkBox || entry.kind == Kind::radioButton);
    if (entry.kind == Kind::radioButton)
        m_followModes.addAction(action);
    QObject::connect(action, &QAction::triggered, &m_menu,
                     [this, key = entry.key] { triggered(key); });
    return m_shown.emplace(entry.key, Shown{entry, action}).first->second;
}

void NativeMenu::apply(QAction& action, const NativeMenuEntry& entry) const {
    action.setText(menuText(entry, m_menu.fontMetrics()));
    action.setToolTip(QString::fromStdString(entry.help.empty() ? entry.text : entry.help));
    action.setIcon(symbolIcon(entry.symbol));
    action.setEnabled(entry.isEnabled && entry.kind != Kind::text);
    action.setChecked(entry.isChecked);
}

void NativeMenu::triggered(const std::string& key) {
    const auto clicked = m_shown.find(key);
    if (clicked == m_shown.end() || !clicked->second.entry.run)
        return;
    const auto run = clicked->second.entry.run;
    run();
    // The click itself has changed the tick, whether or not anything has come of it.
    update();
}

} // namespace kestrove
