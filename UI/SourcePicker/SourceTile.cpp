#include "UI/SourcePicker/SourceTile.h"

#include "UI/SettingsView/FormWidgets.h"
#include "UI/SettingsView/StatusLabel.h"
#include "UI/SourcePicker/PickerMeasures.h"

#include <QAccessible>
#include <QImage>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace kestrove {

namespace {

// Points.
constexpr double inset = 6;
constexpr double cardRadius = 10;
constexpr double pictureRadius = 6;
constexpr double selectedBorder = 3;
constexpr double focusBorder = 2;
constexpr double textGap = 6;
constexpr double lineGap = 2;
constexpr double badgeFontSize = 10;
constexpr double tickSize = 20;

constexpr double disabledOpacity = 0.4;

constexpr double pictureProportion = 10.0 / 16;
/// Of the ordinary text's size.
constexpr double titleScale = 0.95;
constexpr double subtitleScale = 0.86;

/// White on it is read: 5 to 1.
constexpr QColor badgeGreen(0x15, 0x80, 0x3D);

QPixmap pixmapOf(const StillImage& image) {
    // Rows of 32-bit BGRA are what Qt calls RGB32 on this kind of processor.
    const QImage view(image.pixels.data(), image.width, image.height, image.width * 4,
                      QImage::Format_RGB32);
    return QPixmap::fromImage(view);
}

int lineHeight(const QFont& font) {
    return QFontMetrics(font).height();
}

std::optional<TileMove> moveOf(const QKeyEvent& event, bool isRightToLeft) {
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return std::nullopt;
    switch (event.key()) {
    case Qt::Key_Left:
        return isRightToLeft ? TileMove::right : TileMove::left;
    case Qt::Key_Right:
        return isRightToLeft ? TileMove::left : TileMove::right;
    case Qt::Key_Up:
        return TileMove::up;
    case Qt::Key_Down:
        return TileMove::down;
    case Qt::Key_Home:
        return TileMove::first;
    case Qt::Key_End:
        return TileMove::last;
    default:
        return std::nullopt;
    }
}

} // namespace

struct SourceTile::Places {
    QRect card;
    QRect picture;
    QRect title;
    QRect subtitle;
};

SourceTile::SourceTile(QWidget* parent)
    : QAbstractButton(parent) {
    setCheckable(true);
    setFocusPolicy(Qt::ClickFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    connect(this, &QAbstractButton::clicked, this, [this] {
        if (onTap)
            onTap();
    });
}

void SourceTile::show(const SourceTileContent& content) {
    if (m_content == content)
        return;
    const auto before = std::exchange(m_content, content);
    const auto& image = content.preview.image;
    if (!before || before->preview.image != image) {
        m_picture = image ? pixmapOf(*image) : QPixmap();
        m_scaledFor = {};
    }
    setChecked(content.isSelected);
    setEnabled(content.isEnabled);
    const auto title = qtText(content.preview.info.title);
    setAccessibleName(title);
    setAccessibleDescription(qtText(content.accessibleDescription()));
    // Whatever does not fit is read here. A title of others' is no markup.
    setToolTip(title.toHtmlEscaped());
    update();
}

QSize SourceTile::sizeHint() const {
    const int width = PickerMeasures(*this).narrowestTile();
    return {width, heightForTileWidth(width, *this)};
}

int SourceTile::heightForTileWidth(int width, const QWidget& device) {
    const PickerMeasures measures(device);
    const int margin = measures.pixels(inset);
    const int picture = static_cast<int>((width - 2 * margin) * pictureProportion);
    return margin + picture + measures.pixels(textGap) +
           lineHeight(scaledFont(device.font(), titleScale)) + measures.pixels(lineGap) +
           lineHeight(scaledFont(device.font(), subtitleScale)) + margin;
}

SourceTile::Places SourceTile::places() const {
    const PickerMeasures measures(*this);
    const int margin = measures.pixels(inset);
    Places places;
    places.card = rect();
    const int width = rect().width() - 2 * margin;
    places.picture = {margin, margin, width, static_cast<int>(width * pictureProportion)};
    const int textTop = places.picture.bottom() + 1 + measures.pixels(textGap);
    const int titleHeight = lineHeight(scaledFont(font(), titleScale));
    const int textMargin = margin + measures.pixels(2);
    const int textWidth = rect().width() - 2 * textMargin;
    places.title = {textMargin, textTop, textWidth, titleHeight};
    places.subtitle = {textMargin, textTop + titleHeight + measures.pixels(lineGap), textWidth,
                       lineHeight(scaledFont(font(), subtitleScale))};
    return places;
}

void SourceTile::paintEvent(QPaintEvent* /*event*/) {
    if (!m_content)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto where = places();
    const PickerMeasures measures(*this);

    QColor ground = palette().color(QPalette::Highlight);
    ground.setAlphaF(m_content->isSelected ? 0.16F : 0.0F);
    if (!m_content->isSelected && underMouse() && isEnabled()) {
        ground = palette().color(QPalette::WindowText);
        ground.setAlphaF(0.07F);
    }
    QPainterPath card;
    card.addRoundedRect(where.card, measures.pixels(cardRadius), measures.pixels(cardRadius));
    painter.fillPath(card, ground);

    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    paintPicture(painter, where);
    paintTexts(painter, where);
    painter.setOpacity(1);
    paintMarks(painter, where);
}

void SourceTile::paintPicture(QPainter& painter, const Places& places) {
    const PickerMeasures measures(*this);
    const int radius = measures.pixels(pictureRadius);
    QPainterPath frame;
    frame.addRoundedRect(places.picture, radius, radius);
    painter.fillPath(frame, Qt::black);
    if (m_picture.isNull())
        return;
    const auto& picture = scaledPicture(places.picture.size());
    QRect place(QPoint(), picture.size());
    place.moveCenter(places.picture.center());
    painter.save();
    painter.setClipPath(frame);
    painter.drawPixmap(place.topLeft(), picture);
    painter.restore();
}

const QPixmap& SourceTile::scaledPicture(QSize room) {
    if (m_scaledFor != room) {
        m_scaledPicture = m_picture.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        m_scaledFor = room;
    }
    return m_scaledPicture;
}

void SourceTile::paintTexts(QPainter& painter, const Places& places) const {
    const auto& info = m_content->preview.info;
    const auto draw = [&](const QRect& place, double scale, QColor color, const std::string& text) {
        const auto textFont = scaledFont(font(), scale);
        painter.setFont(textFont);
        painter.setPen(color);
        const auto shown = QFontMetrics(textFont).elidedText(qtText(text).simplified(),
                                                             Qt::ElideRight, place.width());
        painter.drawText(place, Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine, shown);
    };
    draw(places.title, titleScale, palette().color(QPalette::WindowText), info.title);
    draw(places.subtitle, subtitleScale, secondaryColor(palette()), info.subtitle.value_or(""));
}

void SourceTile::paintMarks(QPainter& painter, const Places& places) const {
    const PickerMeasures measures(*this);
    const auto accent = palette().color(QPalette::Highlight);
    const auto ring = [&](const QRect& around, double radius, double width, QColor color) {
        const int thickness = std::max(1, measures.pixels(width));
        const double half = thickness / 2.0;
        painter.setPen(QPen(color, thickness));
        painter.setBrush(Qt::NoBrush);
        const double corner = measures.pixels(radius) - half;
        painter.drawRoundedRect(QRectF(around).adjusted(half, half, -half, -half), corner, corner);
    };
    if (m_content->isSelected)
        ring(places.picture, pictureRadius, selectedBorder, accent);
    else if (underMouse() && isEnabled())
        ring(places.picture, pictureRadius, 1, secondaryColor(palette()));
    if (hasFocus())
        ring(places.card, cardRadius, focusBorder, palette().color(QPalette::WindowText));

    const int margin = measures.pixels(8);
    if (m_content->isSelected) {
        const int side = measures.pixels(tickSize);
        QRect place(0, 0, side, side);
        place.moveTopLeft(places.picture.topLeft() + QPoint(margin, margin));
        if (isRightToLeft())
            place.moveRight(places.picture.right() - margin);
        painter.setPen(Qt::NoPen);
        painter.setBrush(accent);
        painter.drawEllipse(place);
        painter.setPen(QPen(palette().color(QPalette::HighlightedText), side / 9.0, Qt::SolidLine,
                            Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        const auto at = [&](double x, double y) {
            return QPointF(place.x() + x * side, place.y() + y * side);
        };
        painter.drawPolyline(QPolygonF({at(0.28, 0.52), at(0.44, 0.68), at(0.73, 0.35)}));
    }
    if (m_content->isLive) {
        auto badgeFont = font();
        badgeFont.setBold(true);
        badgeFont.setPixelSize(measures.pixels(badgeFontSize));
        const QFontMetrics metrics(badgeFont);
        const auto text = qtText(SourcePickerTexts::liveBadge);
        QRect place(0, 0, metrics.horizontalAdvance(text) + measures.pixels(12),
                    metrics.height() + measures.pixels(4));
        place.moveTopRight(places.picture.topRight() + QPoint(-margin, margin));
        if (isRightToLeft())
            place.moveLeft(places.picture.left() + margin);
        painter.setPen(Qt::NoPen);
        painter.setBrush(badgeGreen);
        painter.drawRoundedRect(place, place.height() / 2.0, place.height() / 2.0);
        painter.setFont(badgeFont);
        painter.setPen(Qt::white);
        painter.drawText(place, Qt::AlignCenter, text);
    }
}

void SourceTile::keyPressEvent(QKeyEvent* event) {
    if (const auto move = moveOf(*event, isRightToLeft())) {
        if (onMove)
            onMove(*move);
        return;
    }
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat())
            click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void SourceTile::focusInEvent(QFocusEvent* event) {
    QAbstractButton::focusInEvent(event);
    if (onFocused)
        onFocused();
}

void SourceTile::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void SourceTile::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

} // namespace kestrove
