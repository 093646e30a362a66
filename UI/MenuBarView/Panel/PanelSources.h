#pragma once

#include "UI/MenuBarView/Panel/PanelRow.h"

#include <QVBoxLayout>
#include <QWidget>

#include <cstdint>
#include <map>
#include <vector>

namespace kestrove {

class CaptionLabel;
class MenuBarView;

/// A group of sources: its header, a row each, or what is said instead. Rows that stay keep the
/// keyboard and their place under the pointer.
///
/// Thread: main. `view` outlives it.
class PanelSourceGroup final : public QWidget {
public:
    explicit PanelSourceGroup(MenuBarView& view);

    void show(const MenuSourceGroup& group);
    using QWidget::show;
    [[nodiscard]] std::vector<PanelRow*> rows() const { return m_rows; }

private:
    [[nodiscard]] PanelRow* rowFor(const MenuSourceRow& source);

    MenuBarView& m_view;
    QVBoxLayout m_layout;
    CaptionLabel* m_header;
    CaptionLabel* m_emptyText;
    std::vector<PanelRow*> m_rows;
    std::map<std::uint32_t, PanelRow*> m_bySource;
};

} // namespace kestrove
