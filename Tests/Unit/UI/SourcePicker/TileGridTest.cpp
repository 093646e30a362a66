#include "UI/SourcePicker/TileGrid.h"

#include <gtest/gtest.h>

#include <ostream>

namespace kestrove {

static std::ostream& operator<<(std::ostream& out, const TilePlace& place) {
    return out << place.section << "/" << place.index;
}

namespace {

TEST(TileGrid, FillsTheRowWithAsManyColumnsAsHaveRoom) {
    EXPECT_EQ(TileColumns::fitting(1000, 220, 20), (TileColumns{4, 235}));
    EXPECT_EQ(TileColumns::fitting(940, 220, 20), (TileColumns{4, 220})) << "they just fit";
    EXPECT_EQ(TileColumns::fitting(939, 220, 20), (TileColumns{3, 299}));
    EXPECT_EQ(TileColumns::fitting(300, 220, 20), (TileColumns{1, 300}));
    EXPECT_EQ(TileColumns::fitting(100, 220, 20), (TileColumns{1, 100})) << "narrower than a tile";
    EXPECT_EQ(TileColumns::fitting(0, 220, 20), (TileColumns{1, 1}));
}

struct MoveCase {
    TilePlace from;
    TileMove move;
    std::optional<TilePlace> to;
};

/// Three columns:
///     0/0 0/1
///     (a section without tiles)
///     2/0 2/1 2/2
///     2/3 2/4
///     3/0
class TileGridMove : public testing::TestWithParam<MoveCase> {};

TEST_P(TileGridMove, GoesToTheTileInThatDirection) {
    const auto& [from, move, to] = GetParam();
    EXPECT_EQ(tileAfter(from, move, 3, {2, 0, 5, 1}), to)
        << from << " by " << static_cast<int>(move);
}

constexpr auto left = TileMove::left;
constexpr auto right = TileMove::right;
constexpr auto up = TileMove::up;
constexpr auto down = TileMove::down;

INSTANTIATE_TEST_SUITE_P(
    Moves, TileGridMove,
    testing::Values(
        MoveCase{{0, 0}, right, TilePlace{0, 1}}, MoveCase{{0, 1}, right, TilePlace{2, 0}},
        MoveCase{{2, 2}, right, TilePlace{2, 3}}, MoveCase{{2, 4}, right, TilePlace{3, 0}},
        MoveCase{{3, 0}, right, std::nullopt}, MoveCase{{0, 0}, left, std::nullopt},
        MoveCase{{2, 0}, left, TilePlace{0, 1}}, MoveCase{{2, 3}, left, TilePlace{2, 2}},
        MoveCase{{3, 0}, left, TilePlace{2, 4}}, MoveCase{{0, 1}, down, TilePlace{2, 1}},
        MoveCase{{2, 1}, down, TilePlace{2, 4}}, MoveCase{{2, 2}, down, TilePlace{2, 4}},
        MoveCase{{2, 4}, down, TilePlace{3, 0}}, MoveCase{{3, 0}, down, std::nullopt},
        MoveCase{{3, 0}, up, TilePlace{2, 3}}, MoveCase{{2, 4}, up, TilePlace{2, 1}},
        MoveCase{{2, 2}, up, TilePlace{0, 1}}, MoveCase{{2, 0}, up, TilePlace{0, 0}},
        MoveCase{{0, 1}, up, std::nullopt}, MoveCase{{2, 3}, TileMove::first, TilePlace{0, 0}},
        MoveCase{{0, 0}, TileMove::last, TilePlace{3, 0}}));

TEST(TileGrid, HasNowhereToGoInAnEmptyGrid) {
    EXPECT_EQ(tileAfter({0, 0}, TileMove::first, 3, {0, 0}), std::nullopt);
    EXPECT_EQ(tileAfter({0, 0}, TileMove::last, 3, {}), std::nullopt);
}

} // namespace
} // namespace kestrove
