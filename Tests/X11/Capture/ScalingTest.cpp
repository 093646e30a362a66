#include "Tests/X11/Capture/CaptureFixture.h"

#include <cmath>
#include <random>

namespace kestrove::test {
namespace {

constexpr xcb_rectangle_t sourcePlace{0, 0, 1200, 752};

TestWindow::Options patterned() {
    return {.geometry = sourcePlace, .fill = WindowFill::pattern, .overrideRedirect = true};
}

int channel(std::uint32_t pixel, unsigned shift) {
    return static_cast<int>((pixel >> shift) & 0xFFU);
}

/// The mean of each square of `factor` by `factor` pixels, worked out here.
PixelImage reduced(const PixelImage& image, int factor) {
    PixelImage result{image.width / factor, image.height / factor, {}};
    for (int y = 0; y < result.height; ++y) {
        for (int x = 0; x < result.width; ++x) {
            std::uint32_t mean = 0xFF000000U;
            for (const unsigned shift : {0U, 8U, 16U}) {
                int sum = 0;
                for (int inner = 0; inner < factor * factor; ++inner)
                    sum += channel(
                        image.pixel(x * factor + inner % factor, y * factor + inner / factor),
                        shift);
                mean |= static_cast<std::uint32_t>(std::lround(sum * 1.0 / (factor * factor)))
                        << shift;
            }
            result.pixels.push_back(mean);
        }
    }
    return result;
}

TEST(Scaling, MixesEveryPixelIntoAReductionOfTwoAndOfFour) {
    for (const int factor : {2, 4}) {
        CaptureDesktop test;
        const TestWindow window(test.desktop.displayName(), patterned());
        test.openOutput({1300, 0, static_cast<std::uint16_t>(sourcePlace.width / factor),
                         static_cast<std::uint16_t>(sourcePlace.height / factor)});
        test.start(WindowFilter(window.id()));
        const auto source = readPixels(test.desktop.connection(), window.id());
        // The server's filter rounds down once a pass and axis.
        EXPECT_TRUE(test.outputBecomes(reduced(source, factor), "reduced", 2)) << factor;
    }
}

TEST(Scaling, DrawsPartsAsItWouldDrawTheWhole) {
    std::mt19937 random(20261121);
    const auto between = [&](int low, int high) {
        return std::uniform_int_distribution(low, high)(random);
    };
    // Enlarged, reduced a little, by more than two (one pass of halving) and by more than four.
    for (const xcb_rectangle_t output :
         {xcb_rectangle_t{1200, 0, 1343, 790}, xcb_rectangle_t{1300, 0, 977, 611},
          xcb_rectangle_t{1300, 0, 501, 400}, xcb_rectangle_t{1300, 0, 241, 163}}) {
        CaptureDesktop test;
        TestWindow window(test.desktop.displayName(), patterned());
        test.openOutput(output);
        test.start(WindowFilter(window.id()));
        test.settle();
        for (int round = 0; round < 12; ++round) {
            const xcb_rectangle_t part{static_cast<std::int16_t>(between(0, 1190)),
                                       static_cast<std::int16_t>(between(0, 740)),
                                       static_cast<std::uint16_t>(between(1, 300)),
                                       static_cast<std::uint16_t>(between(1, 200))};
            window.fillRectangle(part, 0xFF000000U | static_cast<Color>(random()));
            test.settle();
        }
        const auto inParts = test.output();
        // A new window of the layer is drawn from nothing.
        test.openOutput(output);
        EXPECT_TRUE(test.outputBecomes(inParts, "parts"));
    }
}

TEST(Scaling, KeepsTheFrameThroughResizesAndExposures) {
    CaptureDesktop test;
    const TestWindow window(test.desktop.displayName(), patterned());
    test.openOutput({1300, 0, 600, 375});
    test.start(WindowFilter(window.id()));
    test.settle();
    const auto before = test.output();
    const int frames = test.frames;
    test.resizeOutput(500, 500);
    test.settle();
    EXPECT_EQ(test.output().pixel(250, 10) & 0xFFFFFFU, 0U);
    test.resizeOutput(600, 375);
    EXPECT_TRUE(test.outputBecomes(before, "resized and back"));
    {
        const TestWindow cover(test.desktop.displayName(),
                               {.geometry = {1250, 0, 900, 700}, .overrideRedirect = true});
        test.settle();
    }
    EXPECT_TRUE(test.outputBecomes(before, "covered and uncovered"));
    // All of it from the frame that was there: the source had nothing to tell.
    EXPECT_EQ(test.frames, frames);
}

TEST(Scaling, IsBlackAfterAFlushForEveryoneAtOnce) {
    CaptureDesktop test;
    const TestWindow window(test.desktop.displayName(), patterned());
    test.openOutput({1300, 0, 600, 375});
    test.start(WindowFilter(window.id()));
    test.settle();
    ASSERT_NE(test.output().pixel(300, 200) & 0xFFFFFFU, 0U);
    test.layer->flush();
    const auto output = test.output();
    for (const auto pixel : output.pixels)
        ASSERT_EQ(pixel & 0xFFFFFFU, 0U);
    EXPECT_EQ(test.layer->status(), DisplayLayerStatus::unknown);
}

} // namespace
} // namespace kestrove::test
