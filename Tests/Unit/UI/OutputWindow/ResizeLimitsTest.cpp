#include "UI/OutputWindow/ResizeLimits.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kestrove {
namespace {

using ResizeLimits::AspectRatios;

TEST(ResizeLimits, AreTheMinimumForAWindowThatIsLarger) {
    EXPECT_EQ(ResizeLimits::smallest({480, 270}, {1280, 800}), Size(480, 270));
    EXPECT_EQ(ResizeLimits::smallest({480, 270}, {480, 270}), Size(480, 270));
}

TEST(ResizeLimits, LetTheProgramGoBelowTheMinimumOnOneSide) {
    EXPECT_EQ(ResizeLimits::smallest({480, 270}, {450, 360}), Size(450, 270));
    EXPECT_EQ(ResizeLimits::smallest({480, 270}, {600, 100}), Size(480, 100));
}

TEST(ResizeLimits, KeepToTheRatioAlone) {
    const AspectRatios same{{1280, 800}, {1280, 800}};
    EXPECT_EQ(ResizeLimits::aspectRatios({1280, 800}, {640, 512}), same);
    EXPECT_EQ(ResizeLimits::aspectRatios({1280, 800}, {512, 640}), same);
}

TEST(ResizeLimits, AllowEveryRoundedSizeOfTheRatio) {
    for (const Size ratio : {Size(1366, 768), Size(640, 512), Size(333, 999), Size(3001, 1)}) {
        for (double factor = 0.05; factor < 3; factor += 0.013) {
            const Size content{std::floor(ratio.width * factor), std::floor(ratio.height * factor)};
            if (content.width < 1 || content.height < 1)
                continue;
            const auto [narrowest, widest] = ResizeLimits::aspectRatios(ratio, content);
            for (const auto& allowed : {ratio, content}) {
                EXPECT_LE(narrowest.width * allowed.height, allowed.width * narrowest.height);
                EXPECT_GE(widest.width * allowed.height, allowed.width * widest.height);
            }
        }
    }
}

} // namespace
} // namespace kestrove
