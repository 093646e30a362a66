#include "UI/SettingsView/StatusLabel.h"

#include "UI/SettingsView/FormWidgets.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace kestrove {

namespace {

constexpr int spacing = 6;

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

/// Each at least 4.5 to 1 against the usual window colours of its theme.
QColor colorOf(StatusColor color, const QPalette& palette) {
    switch (color) {
    case StatusColor::orange:
        return isDark(palette) ? QColor(0xFF, 0xA0, 0x3C) : QColor(0xA3, 0x45, 0x00);
    case StatusColor::green:
        return isDark(palette) ? QColor(0x4C, 0xD0, 0x68) : QColor(0x1A, 0x6E, 0x2E);
    case StatusColor::secondary:
        return secondaryColor(palette);
    }
    return palette.color(QPalette::WindowText);
}

void drawWarning(QPainter& painter, QColor color, QColor ground) {
    QPainterPath triangle;
    triangle.moveTo(8, 1.5);
    triangle.lineTo(15.2, 14.5);
    triangle.lineTo(0.8, 14.5);
    triangle.closeSubpath();
    painter.fillPath(triangle, color);
    painter.setPen(QPen(ground, 1.6, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(8, 6), QPointF(8, 10));
    painter.drawPoint(QPointF(8, 12.4));
}

void drawDone(QPainter& painter, QColor color, QColor ground) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawEllipse(QPointF(8, 8), 7, 7);
    painter.setPen(QPen(ground, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF({{4.8, 8.3}, {7.2, 10.7}, {11.3, 5.6}}));
}

/// On a field of 16 by 16, scaled to `size` pixels.
QPixmap symbolPixmap(std::string_view symbol, int size, QColor color, QColor ground) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 16.0, size / 16.0);
    if (symbol == StatusSymbol::warning) {
        drawWarning(painter, color, ground);
    } else if (symbol == StatusSymbol::done) {
        drawDone(painter, color, ground);
    } else {
        painter.setPen(QPen(color, 1.4));
        painter.drawEllipse(QPointF(8, 8), 6.3, 6.3);
    }
    return pixmap;
}

} // namespace

StatusLabel::StatusLabel(QWidget* parent)
    : QWidget(parent) {
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    layout->addWidget(&m_symbol, 0, Qt::AlignVCenter);
    layout->addWidget(&m_text, 1);
    m_text.setWordWrap(true);
}

void StatusLabel::show(const StatusLine& line) {
    if (m_line == line)
        return;
    m_line = line;
    render();
}

void StatusLabel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        render();
}

void StatusLabel::render() {
    if (!m_line)
        return;
    const auto color = colorOf(m_line->color, palette());
    const int size = m_text.fontMetrics().height();
    m_symbol.setPixmap(
        symbolPixmap(m_line->symbol, size, color, palette().color(QPalette::Window)));
    m_text.setText(qtText(m_line->text));
    // Without a name of its own it would be read by the title of the section.
    setAccessibleName(m_text.text());
    auto own = palette();
    own.setColor(QPalette::WindowText, color);
    m_text.setPalette(own);
}

QColor secondaryColor(const QPalette& palette) {
    const auto text = palette.color(QPalette::WindowText);
    const auto ground = palette.color(QPalette::Window);
    const auto mixed = [](int near, int far) { return (near * 7 + far * 3) / 10; };
    return {mixed(text.red(), ground.red()), mixed(text.green(), ground.green()),
            mixed(text.blue(), ground.blue())};
}

} // namespace kestrove
