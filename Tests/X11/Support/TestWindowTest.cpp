#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/XDesktop.h"

#include <unistd.h>

#include <gtest/gtest.h>
#include <xcb/composite.h>

namespace kestrove::test {

namespace {

class TestWindowTest : public testing::Test {
protected:
    [[nodiscard]] std::uint32_t rootPixel(int x, int y) const {
        const xcb_rectangle_t part{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 1,
                                   1};
        return readPixels(m_desktop.connection(), m_desktop.root(), part).pixel(0, 0);
    }

    PixelImage pattern(int width, int height) {
        PixelImage image{.width = width, .height = height, .pixels = {}};
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                image.pixels.push_back(TestWindow::patternAt(x, y));
            }
        }
        return image;
    }

    XDesktop m_desktop;
};

} // namespace

TEST_F(TestWindowTest, patternIsExactAndSurvivesResizeAndMove) {
    TestWindow window(m_desktop.displayName(),
                      {.geometry = {40, 30, 700, 300}, .fill = WindowFill::pattern});
    const auto content = [&] { return readPixels(window.connection(), window.id()); };
    EXPECT_TRUE(samePixels(content(), pattern(700, 300), "pattern"));
    window.resize(150, 720);
    EXPECT_TRUE(samePixels(content(), pattern(150, 720), "pattern-resized"));
    window.move(1300, 5);
    EXPECT_EQ(window.geometry().x, 1300);
    EXPECT_TRUE(
        samePixels(readPixels(m_desktop.connection(), m_desktop.root(), {1300, 5, 150, 720}),
                   pattern(150, 720), "pattern-moved"));
}

TEST_F(TestWindowTest, drawnRectanglesStay) {
    TestWindow window(m_desktop.displayName(), {.geometry = {0, 0, 100, 100}, .color = 0xff00ff00});
    window.fillRectangle({10, 10, 20, 20}, 0xffff0000);
    window.unmap();
    EXPECT_EQ(rootPixel(10, 10), 0xff000000);
    window.show();
    EXPECT_EQ(rootPixel(9, 10), 0xff00ff00);
    EXPECT_EQ(rootPixel(10, 10), 0xffff0000);
    EXPECT_EQ(rootPixel(29, 29), 0xffff0000);
    EXPECT_EQ(rootPixel(30, 29), 0xff00ff00);
}

TEST_F(TestWindowTest, shapeLetsThroughWhatLiesBeneath) {
    const TestWindow beneath(m_desktop.displayName(),
                             {.geometry = {0, 0, 100, 100}, .color = 0xff0000ff});
    TestWindow window(m_desktop.displayName(), {.geometry = {0, 0, 100, 100}, .color = 0xff00ff00});
    window.setShape({{0, 0, 50, 50}, {50, 50, 50, 50}});
    EXPECT_EQ(rootPixel(49, 49), 0xff00ff00);
    EXPECT_EQ(rootPixel(50, 49), 0xff0000ff);
    EXPECT_EQ(rootPixel(50, 50), 0xff00ff00);
}

TEST_F(TestWindowTest, raisesDestroysAndDisconnects) {
    TestWindow first(m_desktop.displayName(), {.color = 0xff010203});
    TestWindow second(m_desktop.displayName(), {.color = 0xff040506});
    EXPECT_EQ(rootPixel(150, 150), 0xff040506);
    first.raise();
    EXPECT_EQ(rootPixel(150, 150), 0xff010203);
    first.destroy();
    EXPECT_EQ(rootPixel(150, 150), 0xff040506);
    second.disconnect();
    EXPECT_TRUE(waitUntil([&] { return rootPixel(150, 150) == 0xff000000; }));
}

TEST_F(TestWindowTest, argbWindowKeepsItsAlpha) {
    const TestWindow window(m_desktop.displayName(),
                            {.geometry = {0, 0, 60, 40}, .depth = 32, .color = 0x80400000});
    EXPECT_EQ(readPixels(window.connection(), window.id()).pixel(59, 39), 0x80400000);
}

TEST_F(TestWindowTest, redirectedWindowIsReadWhereItIsCovered) {
    TestWindow window(m_desktop.displayName(),
                      {.geometry = {0, 0, 80, 80}, .fill = WindowFill::pattern});
    xcb_composite_redirect_window(m_desktop.connection(), window.id(),
                                  XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    const TestWindow cover(m_desktop.displayName(), {.geometry = {0, 0, 80, 80}});
    EXPECT_TRUE(samePixels(readWindowPixmap(m_desktop.connection(), window.id()), pattern(80, 80),
                           "covered"));
}

TEST_F(TestWindowTest, saysWhoItIs) {
    const TestWindow window(m_desktop.displayName(), {.opacity = 0.5});
    XServer& server = m_desktop.server();
    EXPECT_EQ(server.propertyItem(window.id(), "_NET_WM_PID"),
              static_cast<std::uint32_t>(::getpid()));
    EXPECT_EQ(server.propertyItem(window.id(), "_NET_WM_WINDOW_OPACITY"), 0x7fffffffU);
}

TEST(PixelImageTest, differenceNamesTheFirstPixel) {
    const PixelImage expected{.width = 2, .height = 2, .pixels = {1, 2, 3, 4}};
    PixelImage actual = expected;
    EXPECT_TRUE(samePixels(actual, expected, "equal"));
    actual.pixels[3] = 0x00000f04;
    const auto result = samePixels(actual, expected, "self-test");
    EXPECT_FALSE(result);
    EXPECT_NE(std::string(result.message()).find("first at 1,1: 00000f04 instead of 00000004"),
              std::string::npos)
        << result.message();
    EXPECT_TRUE(samePixels(actual, expected, "tolerated", 15));
    EXPECT_FALSE(samePixels(actual, expected, "self-test", 14));
    EXPECT_FALSE(samePixels(actual.part(0, 0, 1, 2), expected, "self-test", 255));
    EXPECT_EQ(actual.part(1, 1, 1, 1).pixels, std::vector<std::uint32_t>{0x00000f04});
}

} // namespace kestrove::test
