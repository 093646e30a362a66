#include "UI/SourcePicker/TileLayout.h"

#include "UI/SourcePicker/PickerMeasures.h"
#include "UI/SourcePicker/SourceTile.h"

#include <QWidgetItem>

namespace kestrove {

void TileLayout::setTiles(const std::vector<SourceTile*>& tiles) {
    const auto isThere = [this](std::size_t index, const SourceTile* tile) {
        return index < m_items.size() && m_items[index]->widget() == tile;
    };
    bool isSame = tiles.size() == m_items.size();
    for (std::size_t index = 0; isSame && index < tiles.size(); ++index)
        isSame = isThere(index, tiles[index]);
    if (isSame)
        return;
    m_items.clear();
    for (auto* const tile : tiles) {
        addChildWidget(tile);
        m_items.push_back(std::make_unique<QWidgetItem>(tile));
    }
    invalidate();
}

std::size_t TileLayout::columnCount() const {
    return static_cast<std::size_t>(measures(geometry().width()).columns.count);
}

void TileLayout::addItem(QLayoutItem* item) {
    m_items.emplace_back(item);
}

QLayoutItem* TileLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? m_items[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem* TileLayout::takeAt(int index) {
    if (index < 0 || index >= count())
        return nullptr;
    auto* const taken = m_items[static_cast<std::size_t>(index)].release();
    m_items.erase(m_items.begin() + index);
    return taken;
}

TileLayout::Measures TileLayout::measures(int width) const {
    const auto* const parent = parentWidget();
    const PickerMeasures picker = parent ? PickerMeasures(*parent) : PickerMeasures();
    const auto columns = TileColumns::fitting(width, picker.narrowestTile(), picker.tileGap());
    const int height = parent ? SourceTile::heightForTileWidth(columns.tileWidth, *parent) : 0;
    return {picker.tileGap(), columns, height};
}

QSize TileLayout::sizeHint() const {
    return minimumSize();
}

QSize TileLayout::minimumSize() const {
    const auto* const parent = parentWidget();
    return {parent ? PickerMeasures(*parent).narrowestTile() : 0, 0};
}

int TileLayout::heightForWidth(int width) const {
    const auto [gap, columns, tileHeight] = measures(width);
    const int rows = (count() + columns.count - 1) / columns.count;
    return rows == 0 ? 0 : rows * tileHeight + (rows - 1) * gap;
}

void TileLayout::setGeometry(const QRect& place) {
    QLayout::setGeometry(place);
    const auto [gap, columns, tileHeight] = measures(place.width());
    for (int index = 0; index < count(); ++index) {
        int column = index % columns.count;
        const int row = index / columns.count;
        // Rows begin on the right where the language is read from there.
        if (parentWidget() && parentWidget()->isRightToLeft())
            column = columns.count - 1 - column;
        m_items[static_cast<std::size_t>(index)]->setGeometry(
            {place.x() + column * (columns.tileWidth + gap), place.y() + row * (tileHeight + gap),
             columns.tileWidth, tileHeight});
    }
}

} // namespace kestrove
