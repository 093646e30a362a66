#include "UI/ShortcutRecorder/RecorderDrawing.h"

#include <QPainterPath>

namespace kestrove::RecorderDrawing {

namespace {

constexpr double pointsPerInch = 96;
constexpr double width = 140;
constexpr double height = 26;
constexpr double inset = 0.5;
constexpr double cornerRadius = 5;
constexpr double fontSize = 12;
constexpr double ringWidth = 2.5;

double pixelsPerPoint(const QWidget& widget) {
    return widget.logicalDpiX() / pointsPerInch;
}

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

} // namespace

QSize size(const QWidget& widget) {
    return (QSizeF(width, height) * pixelsPerPoint(widget)).toSize();
}

void draw(QPainter& painter, const QWidget& widget, const RecorderAppearance& appearance) {
    const double scale = pixelsPerPoint(widget);
    const auto& palette = widget.palette();
    const auto accent = palette.color(QPalette::Highlight);
    const auto label = palette.color(QPalette::ButtonText);

    painter.setRenderHint(QPainter::Antialiasing);
    const auto margin = inset * scale;
    const auto bounds = QRectF(widget.rect()).adjusted(margin, margin, -margin, -margin);
    QPainterPath shape;
    shape.addRoundedRect(bounds, cornerRadius * scale, cornerRadius * scale);

    const bool isRecording = appearance.isRecording;
    painter.fillPath(shape,
                     isRecording ? withAlpha(accent, 0.18) : palette.color(QPalette::Button));
    const auto border = isRecording ? accent : withAlpha(label, 0.3);
    painter.strokePath(shape, QPen(border, (isRecording ? 1.5 : 1.0) * scale));
    // Recording is told by the border itself.
    if (widget.hasFocus() && !isRecording) {
        const auto half = ringWidth * scale / 2;
        QPainterPath ring;
        ring.addRoundedRect(QRectF(widget.rect()).adjusted(half, half, -half, -half),
                            cornerRadius * scale, cornerRadius * scale);
        painter.strokePath(ring, QPen(accent, ringWidth * scale));
    }

    auto font = widget.font();
    font.setPixelSize(qRound(fontSize * scale));
    font.setWeight(QFont::Medium);
    painter.setFont(font);
    painter.setPen(label);
    painter.drawText(widget.rect(), Qt::AlignCenter, QString::fromStdString(appearance.text));
}

} // namespace kestrove::RecorderDrawing
