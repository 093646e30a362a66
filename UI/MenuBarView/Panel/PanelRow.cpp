#include "UI/MenuBarView/Panel/PanelRow.h"

#include "UI/MenuBarView/Panel/PanelRowDrawing.h"
#include "UI/SettingsView/FormWidgets.h"

#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>

#include <utility>

namespace kestrove {

using Kind = PanelRowContent::Kind;

PanelRowContent panelRow(const MenuButton& button, Kind kind) {
    return {.kind = kind,
            .title = button.title,
            .shortcut = button.shortcut.value_or(button.keyEquivalent.value_or("")),
            .help = button.help.value_or(""),
            .symbol = button.symbol.value_or(""),
            .isEnabled = button.isEnabled};
}

PanelRowContent panelRow(const MenuFollowModeRow& row) {
    return {.kind = Kind::radioButton,
            .title = row.title,
            .symbol = row.symbol,
            .isChecked = row.isCurrent};
}

PanelRowContent panelRow(const MenuSourceRow& row) {
    return {.kind = Kind::checkBox,
            .title = row.title,
            .subtitle = row.subtitle.value_or(""),
            .symbol = row.symbol,
            .isEnabled = row.isEnabled,
            .isChecked = row.isSelected,
            .isLive = row.isLive};
}

PanelRow::PanelRow(PanelRowContent content, std::function<void()> run, QWidget* parent)
    : QPushButton(parent)
    , m_run(std::move(run)) {
    setAttribute(Qt::WA_Hover);
    // The pointer leaves no focus behind, so that only the keyboard's user sees where it is.
    setFocusPolicy(Qt::TabFocus);
    setAutoDefault(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCheckable(content.kind == Kind::radioButton || content.kind == Kind::checkBox);
    if (content.kind == Kind::radioButton) {
        setAutoExclusive(true); // what tells assistive technology of the kind
        m_group.setExclusive(false);
        m_group.addButton(this);
    }
    connect(this, &QPushButton::clicked, this, [this] { this->run(); });
    // Assistive technology turns the tick instead of clicking.
    connect(this, &QPushButton::toggled, this, [this] {
        const QSignalBlocker silent(this);
        setChecked(m_content.isChecked);
        this->run();
    });
    show(content);
}

void PanelRow::run() {
    // The row may be gone before this returns.
    const auto run = m_run;
    run();
}

void PanelRow::show(const PanelRowContent& content) {
    const bool isAnother = m_content != content;
    m_content = content;
    const QSignalBlocker silent(this);
    setChecked(content.isChecked);
    setEnabled(content.isEnabled);
    if (!isAnother)
        return;
    const auto shortcut = content.shortcut.empty() ? "" : "  " + content.shortcut;
    setAccessibleName(qtText(content.title + shortcut));
    auto description = content.subtitle.empty() ? content.help : content.subtitle;
    if (content.isLive)
        description += description.empty() ? "LIVE" : "、LIVE";
    setAccessibleDescription(qtText(description));
    // A title that is too long for the row is cut.
    setToolTip(qtText(content.help.empty() ? content.title : content.help).toHtmlEscaped());
    updateGeometry();
    update();
}

QSize PanelRow::sizeHint() const {
    return panelRowSize(m_content, font());
}

QSize PanelRow::minimumSizeHint() const {
    // A long title may be cut, and no row shall make the panel wider.
    return {1, sizeHint().height()};
}

void PanelRow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!event->isAutoRepeat())
            click();
        return;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Left:
    case Qt::Key_Right:
        // A button's own way would walk among its siblings only.
        event->ignore();
        return;
    default:
        QPushButton::keyPressEvent(event);
    }
}

void PanelRow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    drawPanelRow(painter, m_content,
                 {.rect = rect(),
                  .palette = palette(),
                  .font = font(),
                  .isHovered = underMouse() && isEnabled(),
                  .isPressed = isDown(),
                  .hasFocus = hasFocus()});
}

} // namespace kestrove
