#pragma once

#include "UI/SourcePicker/TileGrid.h"

#include <QLayout>
#include <QLayoutItem>

#include <memory>
#include <vector>

namespace kestrove {

class SourceTile;

/// Lays tiles out in rows that fill the width it is given, all of one size. Thread: main.
class TileLayout final : public QLayout {
public:
    TileLayout() = default;

    /// These tiles, in this order; they are the parent's children from now on. Tiles that are no
    /// longer among them are not touched.
    void setTiles(const std::vector<SourceTile*>& tiles);

    /// As the tiles lie now.
    [[nodiscard]] std::size_t columnCount() const;

    void addItem(QLayoutItem* item) override;
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    int count() const override { return static_cast<int>(m_items.size()); }
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    Qt::Orientations expandingDirections() const override { return Qt::Horizontal; }
    void setGeometry(const QRect& place) override;

private:
    struct Measures {
        int gap;
        TileColumns columns;
        int tileHeight;
    };

    [[nodiscard]] Measures measures(int width) const;

    std::vector<std::unique_ptr<QLayoutItem>> m_items;
};

} // namespace kestrove
