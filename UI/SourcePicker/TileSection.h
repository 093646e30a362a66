#pragma once

#include "UI/SourcePicker/SourcePickerContent.h"
#include "UI/SourcePicker/TileGrid.h"

#include <QLabel>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

namespace kestrove {

class SourceTile;
class TileLayout;

/// What the user does with tiles.
struct TileActions {
    std::function<void(const CaptureSourceInfo&)> tap;
    std::function<void(CaptureSource, TileMove)> move;
    std::function<void(CaptureSource)> focused;
};

/// A headline and the tiles below it. A source that stays keeps its tile, and with it the keyboard
/// and the pointer. Thread: main.
class TileSection final : public QWidget {
public:
    explicit TileSection(TileActions actions);

    void show(const SourcePickerSection& section);
    using QWidget::show;

    [[nodiscard]] const std::vector<SourceTile*>& tiles() const { return m_tiles; }
    [[nodiscard]] std::optional<std::size_t> indexOf(CaptureSource source) const;
    [[nodiscard]] std::size_t columnCount() const;

private:
    [[nodiscard]] SourceTile* takeTile(CaptureSource source);

    TileActions m_actions;
    QLabel* m_title;
    TileLayout* m_grid;
    std::vector<SourceTile*> m_tiles;
};

} // namespace kestrove
