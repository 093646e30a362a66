#include "Tests/X11/Application/Presentation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace kestrove::test {

namespace {

constexpr std::uint32_t black = 0xff000000;

std::uint32_t channel(std::uint32_t pixel, unsigned shift) {
    return (pixel >> shift) & 0xffU;
}

/// One axis of the presentation.
struct Axis {
    double scale;  ///< pixels of the window for one of the source
    int size;      ///< of the source
    double margin; ///< pixels of the window before the picture

    [[nodiscard]] double toSource(int shown) const { return (shown + 0.5 - margin) / scale; }
    [[nodiscard]] double outside(int shown) const {
        const double place = toSource(shown);
        return std::max(-place, place - size) * scale;
    }
    /// Source pixels within one and a half pixels of the larger grid.
    [[nodiscard]] std::pair<int, int> around(int shown) const {
        const double reach = 1.5 * std::max(1.0, 1 / scale);
        const auto inside = [this](double place) {
            return std::clamp(static_cast<int>(std::floor(place)), 0, size - 1);
        };
        return {inside(toSource(shown) - reach), inside(toSource(shown) + reach)};
    }
};

/// `pixel`, each channel brought into the range that the source has there.
std::uint32_t nearestMix(const PixelImage& source, std::pair<int, int> columns,
                         std::pair<int, int> rows, std::uint32_t pixel) {
    std::uint32_t mix = black;
    for (const unsigned shift : {0U, 8U, 16U}) {
        std::uint32_t smallest = 0xff;
        std::uint32_t largest = 0;
        for (int y = rows.first; y <= rows.second; ++y) {
            const auto* const row =
                &source
                     .pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(source.width)];
            for (int x = columns.first; x <= columns.second; ++x) {
                const auto value = channel(row[x], shift);
                smallest = std::min(smallest, value);
                largest = std::max(largest, value);
            }
        }
        mix |= std::clamp(channel(pixel, shift), smallest, largest) << shift;
    }
    return mix;
}

} // namespace

PixelImage presentation(const PixelImage& source, const PixelImage& shown) {
    if (source.width == shown.width && source.height == shown.height) {
        return source;
    }
    const double scale =
        std::min(1.0 * shown.width / source.width, 1.0 * shown.height / source.height);
    const Axis across{scale, source.width, (shown.width - source.width * scale) / 2};
    const Axis down{scale, source.height, (shown.height - source.height * scale) / 2};
    auto expected = shown;
    auto* pixel = expected.pixels.data();
    for (int y = 0; y < shown.height; ++y) {
        for (int x = 0; x < shown.width; ++x, ++pixel) {
            const double outside = std::max(across.outside(x), down.outside(y));
            if (outside > 1) {
                *pixel = black;
            } else if (outside < -1) { // the picture's edge may be rounded to either side
                const auto columns = across.around(x);
                const auto rows = down.around(y);
                // Most pictures are plain nearly everywhere: nothing to mix.
                if (*pixel != source.pixel(columns.first, rows.first))
                    *pixel = nearestMix(source, columns, rows, *pixel);
            }
        }
    }
    return expected;
}

bool isPlaceholder(const PixelImage& shown) {
    const auto isDark = [](std::uint32_t pixel) {
        return std::ranges::max({channel(pixel, 0), channel(pixel, 8), channel(pixel, 16)}) < 16;
    };
    const auto dark = static_cast<std::size_t>(std::ranges::count_if(shown.pixels, isDark));
    return dark < shown.pixels.size() && dark > shown.pixels.size() * 9 / 10;
}

} // namespace kestrove::test
