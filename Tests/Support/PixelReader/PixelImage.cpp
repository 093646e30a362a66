#include "Tests/Support/PixelReader/PixelImage.h"

#include "Tests/Support/Processes/Waiting.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

#include <fmt/core.h>
#include <png.h>

namespace kestrove::test {

namespace {

int distance(std::uint32_t first, std::uint32_t second) {
    int largest = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        const int one = static_cast<int>((first >> shift) & 0xff);
        const int other = static_cast<int>((second >> shift) & 0xff);
        largest = std::max(largest, std::abs(one - other));
    }
    return largest;
}

testing::AssertionResult failure(const PixelImage& actual, const PixelImage& expected,
                                 std::string_view name) {
    const std::filesystem::path folder(KESTROVE_FAILURES_FOLDER);
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    actual.writePng(folder / fmt::format("{}-actual.png", name));
    expected.writePng(folder / fmt::format("{}-expected.png", name));
    return testing::AssertionFailure()
           << name << " differs (pictures in " << folder.string() << "): ";
}

} // namespace

std::uint32_t PixelImage::pixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) {
        giveUp(fmt::format("pixel {},{} of an image of {}x{}", x, y, width, height));
    }
    return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(x)];
}

PixelImage PixelImage::part(int x, int y, int partWidth, int partHeight) const {
    PixelImage result{.width = partWidth, .height = partHeight, .pixels = {}};
    for (int row = y; row < y + partHeight; ++row) {
        for (int column = x; column < x + partWidth; ++column) {
            result.pixels.push_back(pixel(column, row));
        }
    }
    return result;
}

void PixelImage::writePng(const std::filesystem::path& path) const {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_BGRA; // 0xAARRGGBB in memory on the machines that there are
    if (png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), 0, nullptr) == 0) {
        fmt::print(stderr, "test support: cannot write {}: {}\n", path.string(), image.message);
    }
}

bool areAlike(const PixelImage& actual, const PixelImage& expected, int tolerance) {
    return actual.width == expected.width && actual.height == expected.height &&
           std::ranges::equal(actual.pixels, expected.pixels, [&](auto one, auto other) {
               return distance(one, other) <= tolerance;
           });
}

testing::AssertionResult samePixels(const PixelImage& actual, const PixelImage& expected,
                                    std::string_view name, int tolerance) {
    if (actual.width != expected.width || actual.height != expected.height) {
        return failure(actual, expected, name)
               << fmt::format("{}x{} instead of {}x{}", actual.width, actual.height, expected.width,
                              expected.height);
    }
    std::size_t count = 0;
    std::size_t first = 0;
    for (std::size_t index = 0; index < actual.pixels.size(); ++index) {
        if (distance(actual.pixels[index], expected.pixels[index]) > tolerance) {
            first = count == 0 ? index : first;
            ++count;
        }
    }
    if (count == 0) {
        return testing::AssertionSuccess();
    }
    const auto width = static_cast<std::size_t>(actual.width);
    return failure(actual, expected, name)
           << fmt::format("first at {},{}: {:08x} instead of {:08x}; {} of {} pixels",
                          first % width, first / width, actual.pixels[first],
                          expected.pixels[first], count, actual.pixels.size());
}

} // namespace kestrove::test
