#include "UI/SourcePicker/TileGrid.h"

#include <algorithm>

namespace kestrove {

namespace {

using Counts = std::vector<std::size_t>;

std::optional<std::size_t> filledSectionBefore(std::size_t section, const Counts& counts) {
    while (section-- > 0) {
        if (counts[section] > 0)
            return section;
    }
    return std::nullopt;
}

std::optional<std::size_t> filledSectionAfter(std::size_t section, const Counts& counts) {
    while (++section < counts.size()) {
        if (counts[section] > 0)
            return section;
    }
    return std::nullopt;
}

std::optional<TilePlace> above(TilePlace from, std::size_t columns, const Counts& counts) {
    if (from.index >= columns)
        return TilePlace{from.section, from.index - columns};
    const auto section = filledSectionBefore(from.section, counts);
    if (!section)
        return std::nullopt;
    const auto last = counts[*section] - 1;
    return TilePlace{*section, std::min(last - last % columns + from.index, last)};
}

std::optional<TilePlace> below(TilePlace from, std::size_t columns, const Counts& counts) {
    const auto last = counts[from.section] - 1;
    if (from.index / columns < last / columns)
        return TilePlace{from.section, std::min(from.index + columns, last)};
    const auto section = filledSectionAfter(from.section, counts);
    if (!section)
        return std::nullopt;
    return TilePlace{*section, std::min(from.index % columns, counts[*section] - 1)};
}

std::optional<TilePlace> before(TilePlace from, const Counts& counts) {
    if (from.index > 0)
        return TilePlace{from.section, from.index - 1};
    const auto section = filledSectionBefore(from.section, counts);
    return section ? std::optional(TilePlace{*section, counts[*section] - 1}) : std::nullopt;
}

std::optional<TilePlace> after(TilePlace from, const Counts& counts) {
    if (from.index + 1 < counts[from.section])
        return TilePlace{from.section, from.index + 1};
    const auto section = filledSectionAfter(from.section, counts);
    return section ? std::optional(TilePlace{*section, 0}) : std::nullopt;
}

std::optional<TilePlace> first(const Counts& counts) {
    for (std::size_t section = 0; section < counts.size(); ++section) {
        if (counts[section] > 0)
            return TilePlace{section, 0};
    }
    return std::nullopt;
}

std::optional<TilePlace> last(const Counts& counts) {
    const auto section = filledSectionBefore(counts.size(), counts);
    return section ? std::optional(TilePlace{*section, counts[*section] - 1}) : std::nullopt;
}

} // namespace

TileColumns TileColumns::fitting(int rowWidth, int narrowest, int gap) {
    const int count = std::max(1, (rowWidth + gap) / (narrowest + gap));
    return {count, std::max(1, (rowWidth - (count - 1) * gap) / count)};
}

std::optional<TilePlace> tileAfter(TilePlace from, TileMove move, std::size_t columns,
                                   const std::vector<std::size_t>& tileCounts) {
    switch (move) {
    case TileMove::left:
        return before(from, tileCounts);
    case TileMove::right:
        return after(from, tileCounts);
    case TileMove::up:
        return above(from, columns, tileCounts);
    case TileMove::down:
        return below(from, columns, tileCounts);
    case TileMove::first:
        return first(tileCounts);
    case TileMove::last:
        return last(tileCounts);
    }
    return std::nullopt;
}

} // namespace kestrove
