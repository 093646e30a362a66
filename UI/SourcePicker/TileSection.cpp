#include "UI/SourcePicker/TileSection.h"

#include "UI/SettingsView/FormWidgets.h"
#include "UI/SourcePicker/PickerMeasures.h"
#include "UI/SourcePicker/SourceTile.h"
#include "UI/SourcePicker/TileLayout.h"

#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kestrove {

namespace {

constexpr double headlineScale = 1.1;
constexpr double headlineGap = 8; // points

} // namespace

TileSection::TileSection(TileActions actions)
    : m_actions(std::move(actions))
    , m_title(new QLabel)
    , m_grid(new TileLayout) {
    auto headline = scaledFont(m_title->font(), headlineScale);
    headline.setBold(true);
    m_title->setFont(headline);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(PickerMeasures(*this).pixels(headlineGap));
    layout->addWidget(m_title);
    layout->addLayout(m_grid);
}

void TileSection::show(const SourcePickerSection& section) {
    const auto title = qtText(section.title);
    m_title->setText(title);
    setAccessibleName(title);
    std::vector<SourceTile*> shown;
    for (const auto& content : section.tiles) {
        auto* const tile = takeTile(content.preview.id);
        tile->show(content);
        shown.push_back(tile);
    }
    for (auto* const gone : std::exchange(m_tiles, std::move(shown))) {
        if (gone == nullptr)
            continue;
        gone->hide();
        // Perhaps it is the very one that was clicked.
        gone->deleteLater();
    }
    m_grid->setTiles(m_tiles);
    for (auto* const tile : m_tiles)
        tile->setVisible(true);
}

SourceTile* TileSection::takeTile(CaptureSource source) {
    if (const auto index = indexOf(source))
        return std::exchange(m_tiles[*index], nullptr);
    auto* const tile = new SourceTile(this);
    tile->onTap = [this, tile] { m_actions.tap(tile->content().preview.info); };
    tile->onMove = [this, source](TileMove move) { m_actions.move(source, move); };
    tile->onFocused = [this, source] { m_actions.focused(source); };
    return tile;
}

std::optional<std::size_t> TileSection::indexOf(CaptureSource source) const {
    const auto found = std::ranges::find_if(m_tiles, [&](const SourceTile* tile) {
        return tile != nullptr && tile->content().preview.id == source;
    });
    if (found == m_tiles.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - m_tiles.begin());
}

std::size_t TileSection::columnCount() const {
    return m_grid->columnCount();
}

} // namespace kestrove
