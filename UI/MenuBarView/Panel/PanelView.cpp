#include "UI/MenuBarView/Panel/PanelView.h"

#include "UI/MenuBarView/MenuBarView.h"
#include "UI/MenuBarView/Panel/PanelRecovery.h"
#include "UI/MenuBarView/Panel/PanelRow.h"
#include "UI/MenuBarView/Panel/PanelRowDrawing.h"
#include "UI/MenuBarView/Panel/PanelScrollArea.h"
#include "UI/MenuBarView/Panel/PanelSources.h"
#include "UI/SettingsView/FormWidgets.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <iterator>
#include <utility>

namespace kestrove {

namespace {

constexpr int widthInLines = 23;
constexpr int leastSourceLines = 6;

/// What is opened by these is to be looked at, and not to be covered.
bool opensSomethingElse(MenuCommand command) {
    switch (command) {
    case MenuCommand::start:
    case MenuCommand::stop:
    case MenuCommand::refreshSources:
    case MenuCommand::hideOutputWindow:
        return false;
    case MenuCommand::openScreenRecordingPreferences:
    case MenuCommand::showSourcePicker:
    case MenuCommand::leaveHiddenMode:
    case MenuCommand::showOutputWindow:
    case MenuCommand::openSettings:
    case MenuCommand::openPrivacyPolicy:
    case MenuCommand::quit:
        return true;
    }
    std::unreachable();
}

class Divider final : public QWidget {
public:
    Divider() { setFixedHeight(1); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).fillRect(rect(), panelLineColor(palette()));
    }
};

void append(std::vector<PanelRow*>& rows, const std::vector<PanelRow*>& more) {
    rows.insert(rows.end(), more.begin(), more.end());
}

} // namespace

PanelView::PanelView(MenuBarView& view, std::function<void()> leave)
    : m_view(view)
    , m_leave(std::move(leave))
    , m_layout(this) {
    setFocusPolicy(Qt::ClickFocus);
    const int edge = fontMetrics().height() / 2;
    m_layout.setContentsMargins(edge, edge, edge, edge);
    m_layout.setSpacing(0);
    addHeader();
    addDivider();
    m_session = new PanelRow({.kind = PanelRowContent::Kind::prominentCommand}, {});
    m_layout.addWidget(m_session);
    m_layout.addSpacing(edge / 2);
    m_layout.addLayout(m_pickerPlace = new QVBoxLayout);
    addDivider();
    addSources();
    addDivider();
    m_layout.addLayout(m_outputPlace = new QVBoxLayout);
    addDivider();
    m_layout.addLayout(m_endPlace = new QVBoxLayout);
}

void PanelView::addHeader() {
    m_name = new QLabel;
    auto large = font();
    large.setPointSizeF(large.pointSizeF() * 1.25);
    large.setBold(true);
    m_name->setFont(large);
    m_layout.addWidget(m_name);
    indent(*m_name);
    m_status = new CaptionLabel({});
    m_layout.addWidget(m_status);
    indent(*m_status);
    m_recovery = new PanelRecovery([this](MenuCommand command) { run(command); });
    auto* const place = new QVBoxLayout;
    place->setContentsMargins(0, fontMetrics().height() / 3, 0, 0);
    place->addWidget(m_recovery);
    m_layout.addLayout(place);
}

void PanelView::addSources() {
    m_sourcesTitle = new QLabel;
    auto bold = font();
    bold.setBold(true);
    m_sourcesTitle->setFont(bold);
    m_layout.addWidget(m_sourcesTitle);
    indent(*m_sourcesTitle);
    m_note = new CaptionLabel({});
    m_layout.addWidget(m_note);
    indent(*m_note);
    m_layout.addSpacing(fontMetrics().height() / 5);
    m_layout.addLayout(m_followModePlace = new QVBoxLayout);

    auto* const lists = new QWidget;
    auto* const layout = new QVBoxLayout(lists);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_displays = new PanelSourceGroup(m_view));
    layout->addWidget(m_windows = new PanelSourceGroup(m_view));
    layout->addStretch(1);
    m_sources = new PanelScrollArea(lists, {preferredWidth() - fontMetrics().height(),
                                            leastSourceLines * fontMetrics().height()});
    m_layout.addWidget(m_sources, 1);
    m_layout.addWidget(m_refresh = new PanelRow({}, {}));
}

void PanelView::addDivider() {
    const int room = fontMetrics().height() / 3;
    m_layout.addSpacing(room);
    m_layout.addWidget(new Divider);
    m_layout.addSpacing(room);
}

void PanelView::indent(QLabel& label) const {
    const int room = panelRowIndent(font());
    label.setContentsMargins(room, 0, room, 0);
}

void PanelView::run(MenuCommand command) {
    // This view may be gone when the panel has been left.
    auto& view = m_view;
    if (opensSomethingElse(command))
        m_leave();
    view.run(command);
}

void PanelView::show(PanelRow& row, const MenuButton& button) {
    row.show(panelRow(button, row.content().kind));
    row.setRun([this, command = button.command] { run(command); });
}

void PanelView::show(const std::vector<MenuButton>& buttons, std::vector<PanelRow*>& rows,
                     QVBoxLayout& into, PanelRowContent::Kind kind) {
    for (std::size_t place = 0; place < buttons.size(); ++place) {
        if (place == rows.size()) {
            rows.push_back(new PanelRow({.kind = kind}, {}));
            into.addWidget(rows.back());
            rows.back()->setVisible(true); // now, so that the panel's size counts it
        }
        show(*rows[place], buttons[place]);
    }
    for (; rows.size() > buttons.size(); rows.pop_back()) {
        // Perhaps it is the very one that the user has just clicked.
        rows.back()->hide();
        rows.back()->deleteLater();
    }
}

void PanelView::show(const MenuContent& content) {
    auto* const before = dynamic_cast<PanelRow*>(focusWidget());
    const bool hadFocus = before != nullptr && before->hasFocus();
    render(content);
    if (hadFocus && !before->hasFocus()) {
        // Qt has gone on to another row, which the next key press is not meant for.
        m_awaited = before;
        setFocus();
    }
    if (m_awaited && hasFocus() && m_awaited->isEnabled() && m_awaited->isVisibleTo(this))
        m_awaited->setFocus(Qt::OtherFocusReason);
}

void PanelView::render(const MenuContent& content) {
    m_name->setText(qtText(content.header.productName));
    m_status->setText(qtText(content.header.statusMessage));
    if (content.recovery)
        m_recovery->show(*content.recovery);
    m_recovery->setVisible(content.recovery.has_value());
    show(*m_session, content.session);
    const auto some = [](const std::optional<MenuButton>& button) {
        return button ? std::vector{*button} : std::vector<MenuButton>{};
    };
    show(some(content.picker), m_picker, *m_pickerPlace, PanelRowContent::Kind::borderedCommand);

    const auto& sources = content.sources;
    m_sourcesTitle->setText(qtText(sources.title));
    m_note->setText(qtText(sources.note.value_or("")));
    m_note->setVisible(sources.note.has_value());
    for (std::size_t place = 0; place < sources.followModes.size(); ++place) {
        const auto& mode = sources.followModes[place];
        if (place == m_followModes.size()) {
            m_followModes.push_back(new PanelRow(
                panelRow(mode), [this, chosen = mode.mode] { m_view.choose(chosen); }));
            m_followModePlace->addWidget(m_followModes.back());
            m_followModes.back()->setVisible(true);
        }
        m_followModes[place]->show(panelRow(mode));
    }
    m_displays->show(sources.displays);
    m_windows->show(sources.windows);
    show(*m_refresh, sources.refresh);

    show(content.outputWindow, m_output, *m_outputPlace);
    auto end = some(content.settings);
    end.push_back(content.privacyPolicy);
    end.push_back(content.quit);
    show(end, m_end, *m_endPlace);
}

std::vector<PanelRow*> PanelView::rows() const {
    std::vector<PanelRow*> all = m_recovery->rows();
    all.push_back(m_session);
    append(all, m_picker);
    append(all, m_followModes);
    append(all, m_displays->rows());
    append(all, m_windows->rows());
    all.push_back(m_refresh);
    append(all, m_output);
    append(all, m_end);
    std::erase_if(
        all, [this](const PanelRow* row) { return !row->isEnabled() || !row->isVisibleTo(this); });
    return all;
}

void PanelView::walk(int step) {
    const auto all = rows();
    if (all.empty())
        return;
    const int count = static_cast<int>(all.size());
    const auto at = std::ranges::find_if(all, [](const PanelRow* row) { return row->hasFocus(); });
    int next = step > 0 ? 0 : count - 1;
    if (at != all.end())
        next = (static_cast<int>(std::distance(all.begin(), at)) + step + count) % count;
    focusRow(*all[static_cast<std::size_t>(next)]);
}

void PanelView::focusRow(PanelRow& row) {
    row.setFocus(Qt::TabFocusReason);
    // Each area that it lies in has to bring it into sight.
    for (auto* parent = row.parentWidget(); parent != nullptr; parent = parent->parentWidget()) {
        if (auto* const area = qobject_cast<QScrollArea*>(parent))
            area->ensureWidgetVisible(&row, 0, row.height());
    }
}

bool PanelView::focusNextPrevChild(bool next) {
    walk(next ? 1 : -1);
    return true;
}

void PanelView::keyPressEvent(QKeyEvent* event) {
    const auto all = rows();
    switch (event->key()) {
    case Qt::Key_Down:
    case Qt::Key_Right:
        return walk(1);
    case Qt::Key_Up:
    case Qt::Key_Left:
        return walk(-1);
    case Qt::Key_Home:
        return all.empty() ? void() : focusRow(*all.front());
    case Qt::Key_End:
        return all.empty() ? void() : focusRow(*all.back());
    default:
        QWidget::keyPressEvent(event);
    }
}

int PanelView::preferredWidth() const {
    return widthInLines * fontMetrics().height();
}

int PanelView::preferredHeight() const {
    return m_layout.totalHeightForWidth(preferredWidth());
}

int PanelView::leastHeight(int width) const {
    return m_layout.totalMinimumHeightForWidth(width);
}

} // namespace kestrove
