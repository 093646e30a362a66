#pragma once

#include "UI/SourcePicker/SourcePickerContent.h"
#include "UI/SourcePicker/TileGrid.h"

#include <QAbstractButton>
#include <QPixmap>

#include <functional>
#include <optional>

namespace kestrove {

/// A source with its thumbnail, as a button without a frame that can be ticked. It looks as it is
/// told to; a click only asks.
///
/// Thread: main.
class SourceTile final : public QAbstractButton {
public:
    explicit SourceTile(QWidget* parent = nullptr);

    void show(const SourceTileContent& content);
    using QWidget::show;
    [[nodiscard]] const SourceTileContent& content() const { return *m_content; }

    [[nodiscard]] QSize sizeHint() const override;
    /// The height of a tile of this width on `device`.
    [[nodiscard]] static int heightForTileWidth(int width, const QWidget& device);

    /// The tile was clicked.
    std::function<void()> onTap;
    /// A key that leads elsewhere was pressed.
    std::function<void(TileMove)> onMove;
    /// The keyboard has come here.
    std::function<void()> onFocused;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    /// Whether it is ticked is for the settings to say.
    void nextCheckState() override {}

private:
    struct Places;

    [[nodiscard]] Places places() const;
    void paintPicture(QPainter& painter, const Places& places);
    void paintTexts(QPainter& painter, const Places& places) const;
    void paintMarks(QPainter& painter, const Places& places) const;
    [[nodiscard]] const QPixmap& scaledPicture(QSize room);

    std::optional<SourceTileContent> m_content;
    QPixmap m_picture;
    /// The picture as it was last drawn.
    QPixmap m_scaledPicture;
    QSize m_scaledFor;
};

} // namespace kestrove
