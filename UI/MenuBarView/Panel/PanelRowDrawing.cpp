#include "UI/MenuBarView/Panel/PanelRowDrawing.h"

#include "UI/Icons/SymbolIcon.h"
#include "UI/SettingsView/FormWidgets.h"
#include "UI/SettingsView/StatusLabel.h"

#include <QFontMetrics>
#include <QPainter>

#include <algorithm>

namespace kestrove {

namespace {

using Kind = PanelRowContent::Kind;

constexpr double smallerText = 0.87;
/// As the picker marks it. White on it is read: 5 to 1.
constexpr QColor liveGreen(0x15, 0x80, 0x3D);
constexpr auto liveText = "LIVE";

bool isButton(Kind kind) {
    return kind == Kind::prominentCommand || kind == Kind::borderedCommand;
}

/// Everything is measured by the text, which is what a desktop's density makes larger.
struct Measures {
    explicit Measures(const QFont& font)
        : line(QFontMetrics(font).height()) {}

    int line;
    [[nodiscard]] int part(double share) const { return std::max(1, qRound(line * share)); }
    [[nodiscard]] int side() const { return part(0.45); }
    [[nodiscard]] int top(Kind kind) const { return part(isButton(kind) ? 0.42 : 0.3); }
    [[nodiscard]] int symbol() const { return part(0.95); }
    [[nodiscard]] int gap() const { return part(0.4); }
    [[nodiscard]] double radius() const { return line * 0.3; }
};

QFont smaller(QFont font) {
    font.setPointSizeF(font.pointSizeF() * smallerText);
    return font;
}

QFont badgeFont(const QFont& font) {
    auto small = font;
    small.setPointSizeF(font.pointSizeF() * 0.72);
    small.setBold(true);
    return small;
}

QString title(const PanelRowContent& content) {
    // A title of two lines would not be one row.
    return qtText(content.title).simplified();
}

QString shortcut(const PanelRowContent& content) {
    return content.shortcut.empty() ? QString() : qtText("  " + content.shortcut);
}

QColor veil(const QPalette& palette, int alpha) {
    auto color = palette.color(QPalette::WindowText);
    color.setAlpha(alpha);
    return color;
}

void drawGround(QPainter& painter, Kind kind, const PanelRowLook& look, const Measures& measures) {
    const auto area = QRectF(look.rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(Qt::NoPen);
    if (kind == Kind::prominentCommand) {
        const auto group = look.palette.currentColorGroup();
        painter.setBrush(look.palette.color(group, QPalette::Highlight));
        painter.drawRoundedRect(area, measures.radius(), measures.radius());
    } else if (kind == Kind::borderedCommand) {
        painter.setBrush(veil(look.palette, 14));
        painter.setPen(QPen(veil(look.palette, 60), 1));
        painter.drawRoundedRect(area, measures.radius(), measures.radius());
        painter.setPen(Qt::NoPen);
    }
    if (look.isHovered || look.isPressed) {
        painter.setBrush(veil(look.palette, look.isPressed ? 48 : 22));
        painter.drawRoundedRect(area, measures.radius(), measures.radius());
    }
    if (look.hasFocus) {
        const double width = std::max(2.0, measures.line / 9.0);
        // On the filled row the fill's own colour would not be seen.
        const auto role =
            kind == Kind::prominentCommand ? QPalette::WindowText : QPalette::Highlight;
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(look.palette.color(role), width));
        const double inset = width / 2;
        painter.drawRoundedRect(QRectF(look.rect).adjusted(inset, inset, -inset, -inset),
                                measures.radius(), measures.radius());
    }
}

/// At the right end of `place`; gives back what is left of it.
QRect drawLiveBadge(QPainter& painter, QRect place, const QFont& font, const Measures& measures) {
    const auto small = badgeFont(font);
    const QFontMetrics metrics(small);
    const auto text = QLatin1String(liveText);
    QRect badge(0, 0, metrics.horizontalAdvance(text) + measures.part(0.6),
                metrics.height() + measures.part(0.1));
    badge.moveCenter(place.center());
    badge.moveRight(place.right());
    painter.setPen(Qt::NoPen);
    painter.setBrush(liveGreen);
    painter.drawRoundedRect(badge, measures.radius() * 0.7, measures.radius() * 0.7);
    painter.setPen(Qt::white);
    painter.setFont(small);
    painter.drawText(badge, Qt::AlignCenter, text);
    place.setRight(badge.left() - measures.gap());
    return place;
}

/// At the left end of `place`, where also rows without a symbol leave room for one, so that all
/// titles stand in line; gives back what is left of it.
QRect drawSymbol(QPainter& painter, const PanelRowContent& content, QRect place,
                 const Measures& measures) {
    QRect symbol(place.left(), 0, measures.symbol(), measures.symbol());
    symbol.moveCenter({symbol.center().x(), place.center().y()});
    if (!content.symbol.empty())
        symbolIcon(content.symbol)
            .paint(&painter, symbol, Qt::AlignCenter,
                   content.isEnabled ? QIcon::Normal : QIcon::Disabled);
    place.setLeft(symbol.right() + 1 + measures.gap());
    return place;
}

/// The title and after it, fainter, the shortcut.
void drawTitle(QPainter& painter, const PanelRowContent& content, const PanelRowLook& look,
               QRect place) {
    const QFontMetrics metrics(look.font);
    const auto keys = shortcut(content);
    const int room = place.width() - metrics.horizontalAdvance(keys);
    const auto text = metrics.elidedText(title(content), Qt::ElideRight, room);
    const bool isFilled = content.kind == Kind::prominentCommand;
    if (isButton(content.kind))
        place.setLeft(place.left() + (room - metrics.horizontalAdvance(text)) / 2);
    const auto color =
        look.palette.color(isFilled ? QPalette::HighlightedText : QPalette::WindowText);
    painter.setFont(look.font);
    painter.setPen(color);
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text);
    place.setLeft(place.left() + metrics.horizontalAdvance(text));
    painter.setPen(isFilled ? color : secondaryColor(look.palette));
    painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, keys);
}

} // namespace

void drawPanelRow(QPainter& painter, const PanelRowContent& content, const PanelRowLook& look) {
    const Measures measures(look.font);
    painter.setRenderHint(QPainter::Antialiasing);
    drawGround(painter, content.kind, look, measures);
    const int top = measures.top(content.kind);
    auto place = look.rect.adjusted(measures.side(), top, -measures.side(), -top);
    if (content.isLive)
        place = drawLiveBadge(painter, place, look.font, measures);
    if (!isButton(content.kind))
        place = drawSymbol(painter, content, place, measures);
    if (content.subtitle.empty()) {
        drawTitle(painter, content, look, place);
        return;
    }
    const auto small = smaller(look.font);
    const QFontMetrics metrics(small);
    auto below = place;
    place.setHeight(measures.line);
    below.setTop(place.bottom() + 1);
    drawTitle(painter, content, look, place);
    painter.setFont(small);
    painter.setPen(secondaryColor(look.palette));
    painter.drawText(
        below, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
        metrics.elidedText(qtText(content.subtitle).simplified(), Qt::ElideRight, below.width()));
}

QSize panelRowSize(const PanelRowContent& content, const QFont& font) {
    const Measures measures(font);
    const QFontMetrics metrics(font);
    int width = metrics.horizontalAdvance(title(content) + shortcut(content));
    int height = measures.line;
    if (!content.subtitle.empty())
        height += QFontMetrics(smaller(font)).height();
    if (!isButton(content.kind))
        width += measures.symbol() + measures.gap();
    return {width + 2 * measures.side(), height + 2 * measures.top(content.kind)};
}

QColor panelLineColor(const QPalette& palette) {
    return veil(palette, 60);
}

int panelRowIndent(const QFont& font) {
    return Measures(font).side();
}

} // namespace kestrove
