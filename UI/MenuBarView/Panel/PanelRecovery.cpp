#include "UI/MenuBarView/Panel/PanelRecovery.h"

#include "UI/Icons/SymbolIcon.h"
#include "UI/SettingsView/FormWidgets.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kestrove {

namespace {

const QColor warning(0xff, 0x9f, 0x0a);
constexpr int groundAlpha = 40;

class AccessibleRecovery final : public QAccessibleWidget {
public:
    explicit AccessibleRecovery(PanelRecovery& section)
        : QAccessibleWidget(&section, QAccessible::Grouping)
        , m_section(section) {}

    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }

    [[nodiscard]] QStringList actionNames() const override {
        QStringList names;
        for (const auto* const row : m_section.rows()) {
            if (row->isEnabled())
                names.append(row->accessibleName());
        }
        return names + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& actionName) override {
        for (auto* const row : m_section.rows()) {
            if (row->accessibleName() == actionName)
                return row->click();
        }
        QAccessibleWidget::doAction(actionName);
    }
    [[nodiscard]] QString localizedActionDescription(const QString& actionName) const override {
        for (const auto* const row : m_section.rows()) {
            if (row->accessibleName() == actionName)
                return row->accessibleDescription();
        }
        return QAccessibleWidget::localizedActionDescription(actionName);
    }

private:
    PanelRecovery& m_section;
};

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
    auto* const section = dynamic_cast<PanelRecovery*>(object);
    return section == nullptr ? nullptr : new AccessibleRecovery(*section);
}

} // namespace

PanelRecovery::PanelRecovery(std::function<void(MenuCommand)> run)
    : m_run(std::move(run))
    , m_retry({.kind = PanelRowContent::Kind::borderedCommand}, {})
    , m_openPreferences({.kind = PanelRowContent::Kind::borderedCommand}, {}) {
    QAccessible::installFactory(makeInterface); // Qt does not add one that it has already
    const int unit = fontMetrics().height() / 2;
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(unit, unit, unit, unit);
    layout->setSpacing(unit);
    auto* const said = new QHBoxLayout;
    said->setSpacing(unit);
    said->addWidget(&m_symbol, 0, Qt::AlignTop);
    said->addWidget(&m_guidance, 1);
    m_guidance.setWordWrap(true);
    layout->addLayout(said);
    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(unit);
    buttons->addWidget(&m_retry, 1);
    buttons->addWidget(&m_openPreferences, 1);
    layout->addLayout(buttons);
}

void PanelRecovery::show(const MenuRecoverySection& section) {
    const auto set = [this](PanelRow& row, const MenuButton& button) {
        row.show(panelRow(button, PanelRowContent::Kind::borderedCommand));
        row.setRun([run = m_run, command = button.command] { run(command); });
    };
    set(m_retry, section.retry);
    set(m_openPreferences, section.openPreferences);
    if (std::exchange(m_symbolName, section.symbol) != section.symbol)
        renderSymbol();
    const auto guidance = qtText(section.guidance);
    if (m_guidance.text() == guidance)
        return;
    m_guidance.setText(guidance);
    setAccessibleName(guidance);
}

void PanelRecovery::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        renderSymbol();
}

void PanelRecovery::renderSymbol() {
    const int side = fontMetrics().height();
    m_symbol.setPixmap(symbolIcon(m_symbolName).pixmap(side, side));
}

void PanelRecovery::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    auto ground = warning;
    ground.setAlpha(groundAlpha);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    const double radius = fontMetrics().height() * 0.35;
    painter.drawRoundedRect(rect(), radius, radius);
}

} // namespace kestrove
