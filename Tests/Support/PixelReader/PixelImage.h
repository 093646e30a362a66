#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace kestrove::test {

/// Pixels of a drawable, row by row, each 0xAARRGGBB. The alpha is 0xff unless it was read from a
/// drawable of depth 32.
struct PixelImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    /// Ends the program outside of the image.
    [[nodiscard]] std::uint32_t pixel(int x, int y) const;
    [[nodiscard]] PixelImage part(int x, int y, int partWidth, int partHeight) const;
    void writePng(const std::filesystem::path& path) const;
};

/// Equal in size and, channel by channel but for the alpha, no further apart than `tolerance`.
[[nodiscard]] bool areAlike(const PixelImage& actual, const PixelImage& expected, int tolerance);

/// For EXPECT_TRUE: alike. When not, it tells the first pixel that differs and how many do, and
/// writes NAME-actual.png and NAME-expected.png to the build folder's failures/.
[[nodiscard]] testing::AssertionResult samePixels(const PixelImage& actual,
                                                  const PixelImage& expected, std::string_view name,
                                                  int tolerance = 0);

} // namespace kestrove::test
