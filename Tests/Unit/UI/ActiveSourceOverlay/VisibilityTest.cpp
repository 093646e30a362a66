#include "UI/ActiveSourceOverlay/ActiveSourceOverlayVisibility.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace kestrove {
namespace {

using ActiveSourceOverlayVisibility::remainingRegions;
using ActiveSourceOverlayVisibility::visibleTarget;

constexpr WindowID target = 10;
constexpr ProcessID ownProcess = 1;
constexpr ProcessID sharedProcess = 2;
constexpr ProcessID otherProcess = 3;
constexpr Rect targetBounds{100, 100, 400, 300};

OverlayWindowSnapshot targetWindow() {
    return {target, sharedProcess, 0, 1, targetBounds};
}

OverlayWindowSnapshot cover(const Rect& bounds) {
    return {20, otherProcess, 0, 1, bounds};
}

bool isVisible(const std::vector<OverlayWindowSnapshot>& frontToBack) {
    return visibleTarget(target, ownProcess, frontToBack).has_value();
}

TEST(Visibility, GivesTheRowOfAWindowInFront) {
    EXPECT_EQ(visibleTarget(target, ownProcess, std::vector{targetWindow(), cover(targetBounds)}),
              targetWindow());
}

TEST(Visibility, IsAbsentForAWindowThatIsNotListed) {
    EXPECT_FALSE(isVisible({}));
    EXPECT_FALSE(isVisible({cover(targetBounds)}));
}

TEST(Visibility, TakesTheFirstRowOfAnIdentifier) {
    auto behind = targetWindow();
    behind.bounds = {0, 0, 5, 5};
    EXPECT_EQ(visibleTarget(target, ownProcess, std::vector{targetWindow(), behind}),
              targetWindow());
}

TEST(Visibility, NeverMarksAWindowOfOurOwn) {
    auto own = targetWindow();
    own.ownerProcessID = ownProcess;
    EXPECT_FALSE(isVisible({own}));
}

TEST(Visibility, NeverMarksAMenuOrAPanel) {
    for (const int layer : {-1, 3, 25, 101}) {
        auto other = targetWindow();
        other.layer = layer;
        EXPECT_FALSE(isVisible({other})) << layer;
    }
}

TEST(Visibility, NeedsOpacityAndExtent) {
    auto faint = targetWindow();
    faint.alpha = 0.01;
    EXPECT_TRUE(isVisible({faint}));
    faint.alpha = 0;
    EXPECT_FALSE(isVisible({faint}));
    for (const Rect bounds : {Rect{1, 1, 0, 10}, Rect{1, 1, 10, 0}, Rect{1, 1, -5, 10}}) {
        auto flat = targetWindow();
        flat.bounds = bounds;
        EXPECT_FALSE(isVisible({flat}));
    }
}

TEST(Visibility, EndsBehindOneOpaqueWindow) {
    EXPECT_FALSE(isVisible({cover(targetBounds), targetWindow()}));
    EXPECT_TRUE(isVisible({cover({100, 100, 400, 299}), targetWindow()}));
}

TEST(Visibility, GoesOnBehindATranslucentWindow) {
    auto translucent = cover(targetBounds);
    translucent.alpha = 0.9;
    EXPECT_TRUE(isVisible({translucent, targetWindow()}));
}

TEST(Visibility, EndsBehindTwoWindowsThatTogetherCoverIt) {
    const auto left = cover({90, 90, 200, 320});
    const auto right = cover({290, 90, 300, 320});
    EXPECT_TRUE(isVisible({left, targetWindow()}));
    EXPECT_TRUE(isVisible({right, targetWindow()}));
    EXPECT_FALSE(isVisible({left, right, targetWindow()}));
}

TEST(Visibility, IsNotHiddenByWhatIsOursOrFloatsOrIsBehind) {
    auto own = cover(targetBounds);
    own.ownerProcessID = ownProcess;
    EXPECT_TRUE(isVisible({own, targetWindow()}));
    auto panel = cover(targetBounds);
    panel.layer = 20;
    EXPECT_TRUE(isVisible({panel, targetWindow()}));
    auto flat = cover({100, 100, 400, 0});
    EXPECT_TRUE(isVisible({flat, targetWindow()}));
    EXPECT_TRUE(isVisible({targetWindow(), cover(targetBounds)}));
}

TEST(Visibility, EndsBehindAnotherWindowOfTheSameProgram) {
    auto sibling = cover(targetBounds);
    sibling.ownerProcessID = sharedProcess;
    EXPECT_FALSE(isVisible({sibling, targetWindow()}));
}

TEST(RemainingRegions, AreTheRectangleAloneWhenNothingIsCut) {
    const std::vector whole{targetBounds};
    EXPECT_EQ(remainingRegions(targetBounds, {600, 100, 50, 50}), whole);
    // Touching along each edge.
    EXPECT_EQ(remainingRegions(targetBounds, {500, 100, 50, 300}), whole);
    EXPECT_EQ(remainingRegions(targetBounds, {50, 100, 50, 300}), whole);
    EXPECT_EQ(remainingRegions(targetBounds, {100, 400, 400, 50}), whole);
    EXPECT_EQ(remainingRegions(targetBounds, {100, 50, 400, 50}), whole);
    EXPECT_EQ(remainingRegions(targetBounds, {200, 200, 0, 50}), whole);
}

TEST(RemainingRegions, ComeInTheirOrder) {
    const std::vector<Rect> expected{
        {100, 100, 400, 50}, {100, 250, 400, 150}, {100, 150, 100, 100}, {350, 150, 150, 100}};
    EXPECT_EQ(remainingRegions(targetBounds, {200, 150, 150, 100}), expected);
}

TEST(RemainingRegions, AreNoneWhenAllIsCut) {
    EXPECT_TRUE(remainingRegions(targetBounds, targetBounds).empty());
    EXPECT_TRUE(remainingRegions(targetBounds, {0, 0, 1000, 1000}).empty());
}

bool holds(const Rect& rect, double x, double y) {
    return rect.contains({x, y});
}

/// Whole coordinates in a small world, so that every unit square can be looked at.
Rect randomRect(std::mt19937& random) {
    std::uniform_int_distribution<int> place(0, 11);
    std::uniform_int_distribution<int> length(0, 12);
    return {static_cast<double>(place(random)), static_cast<double>(place(random)),
            static_cast<double>(length(random)), static_cast<double>(length(random))};
}

/// Disjoint, inside, and with the cut exactly the rectangle: every unit square of the world lies in
/// one region if it is in the rectangle and not excluded, and in none otherwise.
TEST(RemainingRegions, CoverExactlyWhatIsNotCut) {
    for (unsigned seed = 0; seed < 2000; ++seed) {
        std::mt19937 random(seed);
        auto rectangle = randomRect(random);
        rectangle.width += 1;
        rectangle.height += 1;
        const auto excluded = randomRect(random);
        const auto regions = remainingRegions(rectangle, excluded);
        ASSERT_LE(regions.size(), 4U);
        for (const auto& region : regions)
            ASSERT_TRUE(region.width > 0 && region.height > 0) << "seed " << seed;
        for (double y = 0.5; y < 26; ++y) {
            for (double x = 0.5; x < 26; ++x) {
                const auto count = std::ranges::count_if(
                    regions, [&](const auto& region) { return holds(region, x, y); });
                const bool remains = holds(rectangle, x, y) && !holds(excluded, x, y);
                ASSERT_EQ(count, remains ? 1 : 0) << "seed " << seed << " at " << x << ' ' << y;
            }
        }
    }
}

/// The decision against a plain count of the unit squares that nothing covers.
TEST(Visibility, AgreesWithLookingAtEverySquare) {
    for (unsigned seed = 0; seed < 2000; ++seed) {
        std::mt19937 random(seed);
        std::uniform_int_distribution<int> count(0, 6);
        auto shared = targetWindow();
        shared.bounds = randomRect(random);
        shared.bounds.width += 1;
        shared.bounds.height += 1;
        std::vector<OverlayWindowSnapshot> windows;
        for (int i = count(random); i > 0; --i)
            windows.push_back(cover(randomRect(random)));
        bool expected = false;
        for (double y = 0.5; y < 26; ++y) {
            for (double x = 0.5; x < 26; ++x) {
                expected |= holds(shared.bounds, x, y) &&
                            std::ranges::none_of(windows, [&](const auto& window) {
                                return holds(window.bounds, x, y);
                            });
            }
        }
        windows.push_back(shared);
        ASSERT_EQ(isVisible(windows), expected) << "seed " << seed;
    }
}

} // namespace
} // namespace kestrove
