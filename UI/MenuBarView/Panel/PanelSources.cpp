#include "UI/MenuBarView/Panel/PanelSources.h"

#include "UI/MenuBarView/MenuBarView.h"
#include "UI/MenuBarView/Panel/PanelRowDrawing.h"
#include "UI/SettingsView/FormWidgets.h"

#include <algorithm>
#include <utility>

namespace kestrove {

namespace {

void say(QLabel& label, const std::string& text) {
    if (const auto said = qtText(text); label.text() != said)
        label.setText(said);
}

} // namespace

PanelSourceGroup::PanelSourceGroup(MenuBarView& view)
    : m_view(view)
    , m_layout(this)
    , m_header(new CaptionLabel({}, this))
    , m_emptyText(new CaptionLabel({}, this)) {
    const int indent = panelRowIndent(font());
    const int above = fontMetrics().height() / 4;
    m_header->setContentsMargins(indent, above, indent, above / 2);
    m_emptyText->setContentsMargins(indent, above / 2, indent, above);
    m_layout.setContentsMargins(0, 0, 0, 0);
    m_layout.setSpacing(0);
    m_layout.addWidget(m_header);
    m_layout.addWidget(m_emptyText);
}

void PanelSourceGroup::show(const MenuSourceGroup& group) {
    say(*m_header, group.header);
    setAccessibleName(qtText(group.header));
    say(*m_emptyText, group.emptyText.value_or(""));
    m_emptyText->setVisible(group.emptyText.has_value());

    const auto before = std::exchange(m_rows, {});
    for (int place = 1; const auto& source : group.rows) {
        auto* const row = rowFor(source);
        row->show(panelRow(source));
        row->setRun([&view = m_view, source] { view.toggle(source); });
        if (m_layout.indexOf(row) != place)
            m_layout.insertWidget(place, row);
        row->setVisible(true); // now, so that the panel's size counts it
        m_rows.push_back(row);
        ++place;
    }
    std::erase_if(m_bySource, [this](const auto& each) {
        if (std::ranges::find(m_rows, each.second) != m_rows.end())
            return false;
        // Perhaps it is the very one that the user has just clicked.
        m_layout.removeWidget(each.second);
        each.second->hide();
        each.second->deleteLater();
        return true;
    });
}

PanelRow* PanelSourceGroup::rowFor(const MenuSourceRow& source) {
    const auto [place, isNew] = m_bySource.try_emplace(source.source.identifier(), nullptr);
    if (isNew)
        place->second = new PanelRow(panelRow(source), {}, this);
    return place->second;
}

} // namespace kestrove
