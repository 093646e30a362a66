#include "Util/ContentGeometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace kestrove {
namespace {

using namespace ContentGeometry;

/// Far above the rounding errors of some thousand points, far below anything visible.
constexpr double tolerance = 1e-6;
constexpr int cases = 4000;

/// Rectangles as desktops have them, and some that they should not have.
class Generator {
public:
    explicit Generator(unsigned seed)
        : m_engine(seed) {}

    double between(double low, double high) {
        return std::uniform_real_distribution(low, high)(m_engine);
    }
    int choice(int count) { return std::uniform_int_distribution(0, count - 1)(m_engine); }
    Size size() { return {length(), length()}; }
    Rect rect() {
        const auto drawn = size();
        return {position(), position(), drawn.width, drawn.height};
    }

private:
    double position() {
        const double drawn = between(-6000, 6000);
        return choice(2) == 0 ? std::round(drawn) : drawn;
    }
    double length() {
        switch (choice(4)) {
        case 0:
            return between(0.01, 2);
        case 1:
            return between(1, 10'000);
        default:
            return std::ceil(between(1, 5000));
        }
    }

    std::mt19937 m_engine;
};

void expectNear(const Rect& a, const Rect& b) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.width, b.width, tolerance);
    EXPECT_NEAR(a.height, b.height, tolerance);
}

void expectInside(const Rect& inner, const Rect& outer) {
    EXPECT_GE(inner.minX(), outer.minX() - tolerance);
    EXPECT_GE(inner.minY(), outer.minY() - tolerance);
    EXPECT_LE(inner.maxX(), outer.maxX() + tolerance);
    EXPECT_LE(inner.maxY(), outer.maxY() + tolerance);
}

class GeometryProperty : public testing::TestWithParam<unsigned> {
protected:
    Generator generate{GetParam()};
};

TEST_P(GeometryProperty, ClampedFramesLieInsideKeepTheirShapeAndStay) {
    for (int count = 0; count < cases; ++count) {
        const auto frame = generate.rect();
        const auto bounds = generate.rect();
        const auto clamped = clampedWindowFrame(frame, bounds);
        ASSERT_TRUE(clamped);
        expectInside(*clamped, bounds);
        EXPECT_LE(clamped->width, frame.width);
        EXPECT_LE(clamped->height, frame.height);
        EXPECT_NEAR(clamped->width * frame.height / (clamped->height * frame.width), 1, 1e-9);
        expectNear(*clampedWindowFrame(*clamped, bounds), *clamped);
        if (HasFailure())
            return;
    }
}

TEST_P(GeometryProperty, PlacementsAreFractionsAndComeBack) {
    for (int count = 0; count < cases; ++count) {
        const auto frame = generate.rect();
        const auto bounds = generate.rect();
        const auto relative = relativePlacement(frame, bounds);
        ASSERT_TRUE(relative);
        EXPECT_GE(relative->x, -tolerance);
        EXPECT_LE(relative->x, 1 + tolerance);
        EXPECT_GE(relative->y, -tolerance);
        EXPECT_LE(relative->y, 1 + tolerance);
        const auto positioned = positionedWindowFrame(frame.size(), *relative, bounds);
        ASSERT_TRUE(positioned);
        expectNear(*positioned, *clampedWindowFrame(frame, bounds));
        if (HasFailure())
            return;
    }
}

TEST_P(GeometryProperty, PositionedFramesLieInsideWhateverThePlacement) {
    for (int count = 0; count < cases; ++count) {
        const auto bounds = generate.rect();
        const Point anywhere{generate.between(-2, 3), generate.between(-2, 3)};
        const auto positioned = positionedWindowFrame(generate.size(), anywhere, bounds);
        ASSERT_TRUE(positioned);
        expectInside(*positioned, bounds);
        if (HasFailure())
            return;
    }
}

TEST_P(GeometryProperty, OffscreenFramesTouchNoScreenAndKeepTheirSize) {
    for (int count = 0; count < cases; ++count) {
        std::vector<Rect> screens;
        for (int screen = generate.choice(5); screen >= 0; --screen)
            screens.push_back(generate.rect());
        const auto size = generate.size();
        const auto frame = offscreenWindowFrame(size, screens);
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->size(), size);
        for (const auto& screen : screens) {
            EXPECT_LE(frame->maxX(), screen.minX() + tolerance);
            EXPECT_LE(frame->maxY(), screen.minY() + tolerance);
        }
        if (HasFailure())
            return;
    }
}

TEST_P(GeometryProperty, PixelSizesAreWholeReachTheMinimumAndKeepTheShape) {
    for (int count = 0; count < cases; ++count) {
        const Size point{generate.between(1, 6000), generate.between(1, 6000)};
        const double scale = generate.between(0.5, 3);
        const Size minimum{480, 270};
        const auto pixels = scaledPixelSize(point, scale, minimum);
        EXPECT_EQ(pixels.width, std::floor(pixels.width));
        EXPECT_EQ(pixels.height, std::floor(pixels.height));
        // A rounding error may leave the enlarged axis a hair below the minimum; rounding up hides
        // it.
        EXPECT_GE(pixels.width, minimum.width);
        EXPECT_GE(pixels.height, minimum.height);
        EXPECT_GE(pixels.width, point.width * scale);
        EXPECT_GE(pixels.height, point.height * scale);
        // Rounding up adds less than a pixel to each axis.
        const double aspect = point.width / point.height;
        EXPECT_GT(pixels.width, (pixels.height - 1) * aspect - tolerance);
        EXPECT_LT(pixels.width - 1, pixels.height * aspect + tolerance);
        if (HasFailure())
            return;
    }
}

TEST_P(GeometryProperty, TheBestIntersectionIsTheFirstOfTheLargest) {
    for (int count = 0; count < cases; ++count) {
        std::vector<Rect> others;
        for (int other = generate.choice(6); other > 0; --other)
            others.push_back(generate.rect());
        const auto rectangle = generate.rect();
        const auto area = [&](const Rect& other) {
            const double width =
                std::min(rectangle.maxX(), other.maxX()) - std::max(rectangle.x, other.x);
            const double height =
                std::min(rectangle.maxY(), other.maxY()) - std::max(rectangle.y, other.y);
            return std::max(width, 0.0) * std::max(height, 0.0);
        };
        const auto best = bestIntersectionIndex(rectangle, others);
        const double bestArea = best ? area(others[*best]) : 0;
        EXPECT_EQ(best.has_value(), bestArea > 0);
        for (std::size_t index = 0; index < others.size(); ++index) {
            EXPECT_LE(area(others[index]), bestArea);
            EXPECT_TRUE(!best || index >= *best || area(others[index]) < bestArea);
        }
        if (HasFailure())
            return;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, GeometryProperty, testing::Values(1U, 2U, 3U, 4U));

} // namespace
} // namespace kestrove
