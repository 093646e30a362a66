#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace kestrove {

/// How tiles share the width of a row. All numbers are of one unit, whichever.
struct TileColumns {
    int count = 1;
    int tileWidth = 0;

    /// As many columns as there is room for tiles of at least `narrowest`, `gap` apart; they fill
    /// the row, but for what does not divide. One column, however narrow the row.
    [[nodiscard]] static TileColumns fitting(int rowWidth, int narrowest, int gap);

    bool operator==(const TileColumns&) const = default;
};

/// Which tile: the section and the place in it.
struct TilePlace {
    std::size_t section = 0;
    std::size_t index = 0;

    bool operator==(const TilePlace&) const = default;
};

enum class TileMove : std::uint8_t { left, right, up, down, first, last };

/// Where the keyboard goes from `from`, over sections of so many tiles each, all of `columns`
/// columns: left and right in reading order, from section to section; up and down within the
/// column, or to the nearest tile where the next row is shorter. Absent where there is none.
[[nodiscard]] std::optional<TilePlace> tileAfter(TilePlace from, TileMove move, std::size_t columns,
                                                 const std::vector<std::size_t>& tileCounts);

} // namespace kestrove
