#include "Util/ContentGeometry.h"

#include <gtest/gtest.h>

#include <limits>

namespace kestrove {
namespace {

using namespace ContentGeometry;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(ScaledPixelSize, MultipliesByTheScale) {
    EXPECT_EQ(scaledPixelSize({1512, 982}, 2, {0, 0}), (Size{3024, 1964}));
}

TEST(ScaledPixelSize, EnlargesBothAxesByOneFactorToReachTheMinimum) {
    EXPECT_EQ(scaledPixelSize({100, 50}, 2, {480, 270}), (Size{540, 270}));
    EXPECT_EQ(scaledPixelSize({200, 50}, 1, {480, 270}), (Size{1080, 270}));
    EXPECT_EQ(scaledPixelSize({10, 100}, 1, {480, 270}), (Size{480, 4800}));
}

TEST(ScaledPixelSize, RoundsEachAxisUp) {
    EXPECT_EQ(scaledPixelSize({100.1, 50.5}, 1, {0, 0}), (Size{101, 51}));
}

TEST(ScaledPixelSize, IsTheMinimumWithoutASizeOrAScale) {
    const Size minimum{480, 270};
    EXPECT_EQ(scaledPixelSize({0, 50}, 2, minimum), minimum);
    EXPECT_EQ(scaledPixelSize({50, 0}, 2, minimum), minimum);
    EXPECT_EQ(scaledPixelSize({-1, 50}, 2, minimum), minimum);
    EXPECT_EQ(scaledPixelSize({100, 50}, 0, minimum), minimum);
    EXPECT_EQ(scaledPixelSize({100, 50}, -1, minimum), minimum);
    EXPECT_EQ(scaledPixelSize({notANumber, 50}, 1, minimum), minimum);
}

TEST(ClampedWindowFrame, ShrinksByOneFactor) {
    EXPECT_EQ(clampedWindowFrame({0, 0, 2000, 1000}, {0, 0, 1000, 1000}), (Rect{0, 0, 1000, 500}));
}

TEST(ClampedWindowFrame, NeverEnlarges) {
    EXPECT_EQ(clampedWindowFrame({10, 20, 100, 50}, {0, 0, 1000, 800}), (Rect{10, 20, 100, 50}));
}

TEST(ClampedWindowFrame, PushesInFromEachSide) {
    const Rect bounds{0, 0, 1000, 800};
    EXPECT_EQ(clampedWindowFrame({-50, -50, 100, 100}, bounds), (Rect{0, 0, 100, 100}));
    EXPECT_EQ(clampedWindowFrame({950, 750, 100, 100}, bounds), (Rect{900, 700, 100, 100}));
    EXPECT_EQ(clampedWindowFrame({-2000, 900, 100, 100}, {-1440, 200, 1440, 900}),
              (Rect{-1440, 900, 100, 100}));
}

TEST(ClampedWindowFrame, IsAbsentWithoutAnArea) {
    const Rect good{0, 0, 100, 100};
    for (const Rect bad : {Rect{0, 0, 0, 100}, Rect{0, 0, 100, 0}, Rect{0, 0, -1, 100},
                           Rect{0, 0, 100, notANumber}}) {
        EXPECT_FALSE(clampedWindowFrame(bad, good));
        EXPECT_FALSE(clampedWindowFrame(good, bad));
        EXPECT_FALSE(relativePlacement(bad, good));
        EXPECT_FALSE(relativePlacement(good, bad));
        EXPECT_FALSE(positionedWindowFrame(bad.size(), {0.5, 0.5}, good));
        EXPECT_FALSE(positionedWindowFrame(good.size(), {0.5, 0.5}, bad));
    }
}

TEST(RelativePlacement, MeasuresTheFreeRoom) {
    EXPECT_EQ(relativePlacement({100, 350, 200, 100}, {0, 0, 600, 800}), (Point{0.25, 0.5}));
    EXPECT_EQ(relativePlacement({0, 0, 200, 100}, {0, 0, 600, 800}), (Point{0, 0}));
    EXPECT_EQ(relativePlacement({400, 700, 200, 100}, {0, 0, 600, 800}), (Point{1, 1}));
}

TEST(RelativePlacement, CountsAFilledAxisAsCentred) {
    EXPECT_EQ(relativePlacement({0, 0, 600, 100}, {0, 0, 600, 800}), (Point{0.5, 0}));
    EXPECT_EQ(relativePlacement({0, 0, 100, 800}, {0, 0, 600, 800}), (Point{0, 0.5}));
}

TEST(RelativePlacement, SeesAFilledAxisDespiteRounding) {
    // 49 times (1/49) is not 1 in binary fractions.
    EXPECT_EQ(relativePlacement({0, 0, 49, 0.5}, {0, 0, 1, 1})->x, 0.5);
    EXPECT_EQ(relativePlacement({0, 0, 0.5, 49}, {0, 0, 1, 1})->y, 0.5);
}

TEST(PositionedWindowFrame, ClampsTheRelativePoint) {
    EXPECT_EQ(positionedWindowFrame({200, 100}, {1.5, -0.2}, {10, 20, 1000, 800}),
              (Rect{810, 20, 200, 100}));
}

TEST(PositionedWindowFrame, IsAbsentWithoutAFinitePoint) {
    const Rect bounds{0, 0, 1000, 800};
    for (const double bad : {notANumber, infinite, -infinite}) {
        EXPECT_FALSE(positionedWindowFrame({200, 100}, {bad, 0.5}, bounds));
        EXPECT_FALSE(positionedWindowFrame({200, 100}, {0.5, bad}, bounds));
    }
}

TEST(PositionedWindowFrame, KeepsTheProportionsOnAnotherScreen) {
    const auto relative = relativePlacement({800, 0, 200, 100}, {0, 0, 1000, 800});
    EXPECT_EQ(positionedWindowFrame({200, 100}, *relative, {-500, 100, 500, 400}),
              (Rect{-200, 100, 200, 100}));
}

TEST(BestIntersectionIndex, TakesTheGreatestArea) {
    EXPECT_EQ(bestIntersectionIndex({50, 0, 200, 100}, {{0, 0, 100, 100}, {100, 0, 200, 100}}), 1U);
}

TEST(BestIntersectionIndex, TakesTheFirstAmongEquals) {
    EXPECT_EQ(bestIntersectionIndex({50, 0, 100, 100}, {{0, 0, 100, 100}, {100, 0, 100, 100}}), 0U);
}

TEST(BestIntersectionIndex, IsAbsentWithoutASharedArea) {
    EXPECT_FALSE(bestIntersectionIndex({0, 0, 100, 100}, {}));
    EXPECT_FALSE(bestIntersectionIndex({0, 0, 100, 100}, {{100, 0, 100, 100}, {0, 100, 50, 50}}));
    // Apart on both axes: two negative lengths must not make a positive area.
    EXPECT_FALSE(bestIntersectionIndex({0, 0, 100, 100}, {{200, 200, 50, 50}}));
    EXPECT_FALSE(bestIntersectionIndex({10, 10, 0, 50}, {{0, 0, 100, 100}}));
}

TEST(OffscreenWindowFrame, LiesBelowAndLeftOfAllScreens) {
    EXPECT_EQ(offscreenWindowFrame({800, 450}, {{0, 0, 1920, 1080}, {-1440, 200, 1440, 900}}),
              (Rect{-2240, -450, 800, 450}));
}

TEST(OffscreenWindowFrame, IsAbsentWithoutASizeOrAScreen) {
    EXPECT_FALSE(offscreenWindowFrame({0, 450}, {{0, 0, 1920, 1080}}));
    EXPECT_FALSE(offscreenWindowFrame({800, 0}, {{0, 0, 1920, 1080}}));
    EXPECT_FALSE(offscreenWindowFrame({800, 450}, {}));
}

} // namespace
} // namespace kestrove
