#pragma once

#include "Async/Signal.h"
#include "UI/MenuBarView/MenuContent.h"
#include "UI/MenuBarView/Panel/PanelRow.h"

#include <QPointer>
#include <QVBoxLayout>
#include <QWidget>

#include <functional>
#include <vector>

class QLabel;

namespace kestrove {

class CaptionLabel;
class MenuBarView;
class PanelRecovery;
class PanelScrollArea;
class PanelSourceGroup;

/// The content of the panel, from top to bottom: what the menu says, as rows that can be clicked
/// and walked through by the keyboard. It follows the content at once. Only the lists of sources
/// scroll, so that all else stays where it is.
///
/// Thread: main. `view` outlives it.
class PanelView final : public QWidget {
public:
    /// `leave` is called before a command is run that opens something else to look at.
    PanelView(MenuBarView& view, std::function<void()> leave);

    void show(const MenuContent& content);
    using QWidget::show;

    /// Pixels; follows the text's size, not the texts.
    [[nodiscard]] int preferredWidth() const;
    /// At the preferred width, with room for every source. Pixels.
    [[nodiscard]] int preferredHeight() const;
    /// With room for a few sources at a time.
    [[nodiscard]] int leastHeight(int width) const;

protected:
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void render(const MenuContent& content);
    void addHeader();
    void addSources();
    void addDivider();
    void indent(QLabel& label) const;
    void run(MenuCommand command);
    /// Shows one row a button, and no more.
    void show(const std::vector<MenuButton>& buttons, std::vector<PanelRow*>& rows,
              QVBoxLayout& into, PanelRowContent::Kind kind = PanelRowContent::Kind::command);
    void show(PanelRow& row, const MenuButton& button);
    /// All that can be chosen now, from top to bottom.
    [[nodiscard]] std::vector<PanelRow*> rows() const;
    void focusRow(PanelRow& row);
    /// `step` rows on from the one with the focus; past an end the other one is next.
    void walk(int step);

    MenuBarView& m_view;
    std::function<void()> m_leave;
    QVBoxLayout m_layout;
    QLabel* m_name = nullptr;
    CaptionLabel* m_status = nullptr;
    PanelRecovery* m_recovery = nullptr;
    PanelRow* m_session = nullptr;
    QVBoxLayout* m_pickerPlace = nullptr;
    std::vector<PanelRow*> m_picker;
    QLabel* m_sourcesTitle = nullptr;
    CaptionLabel* m_note = nullptr;
    QVBoxLayout* m_followModePlace = nullptr;
    std::vector<PanelRow*> m_followModes;
    PanelSourceGroup* m_displays = nullptr;
    PanelSourceGroup* m_windows = nullptr;
    PanelScrollArea* m_sources = nullptr;
    PanelRow* m_refresh = nullptr;
    QVBoxLayout* m_outputPlace = nullptr;
    std::vector<PanelRow*> m_output;
    QVBoxLayout* m_endPlace = nullptr;
    std::vector<PanelRow*> m_end;
    /// Had the focus when it could not be chosen any more: gets it again when it can.
    QPointer<PanelRow> m_awaited;
};

} // namespace kestrove
