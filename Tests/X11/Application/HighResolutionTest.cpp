#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/ApplicationFixture.h"

#include <string_view>

namespace kestrove::test {
namespace {

constexpr Color green = 0xff34c759;

/// A desktop whose user has everything twice as large as usual, on two displays of different sizes
/// and origins. The server counts in pixels all the same, and so do the pictures.
class HighResolution : public ApplicationFixture {
protected:
    HighResolution() {
        constexpr std::string_view resources = "Xft.dpi:\t192\n";
        xcb_change_property(desktop.connection(), XCB_PROP_MODE_REPLACE, desktop.root(),
                            XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8,
                            static_cast<std::uint32_t>(resources.size()), resources.data());
        sync(desktop.connection());
    }

    [[nodiscard]] Color pixel(int x, int y) const {
        return readPixels(desktop.connection(), desktop.root(),
                          {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 1, 1})
            .pixel(0, 0);
    }
    /// A line of this many pixels from the edge of the right display on, at this height.
    [[nodiscard]] bool hasLeftLine(int width, int y) const {
        for (int x = 0; x < width; ++x) {
            if (pixel(rightPlace.x + x, y) != green)
                return false;
        }
        return pixel(rightPlace.x + width, y) != green && pixel(rightPlace.x - 1, y) != green;
    }
    [[nodiscard]] bool hasTopLine(int width, int x) const {
        for (int y = 0; y < width; ++y) {
            if (pixel(x, y) != green)
                return false;
        }
        return pixel(x, width) != green;
    }
};

TEST_F(HighResolution, MarksADisplayByALineOfTwiceAsManyPixels) {
    start(onlyDisplay("RIGHT") + "kestrove.autoStart=true\n");
    EXPECT_TRUE(waitUntil([this] {
        return hasLeftLine(8, 600) && hasTopLine(8, rightPlace.x + rightPlace.width - 100);
    }));
    // Rounded by sixteen pixels.
    EXPECT_NE(pixel(rightPlace.x + 3, 3), green);
    EXPECT_EQ(pixel(rightPlace.x + 5, 5), green);
    // And the hole by the eight that the line leaves of them.
    EXPECT_EQ(pixel(rightPlace.x + 9, 9), green);
    EXPECT_NE(pixel(rightPlace.x + 11, 11), green);
    EXPECT_TRUE(shows(right, "without the line"));
}

TEST_F(HighResolution, ShowsADisplayPixelForPixelWhereThereIsRoom) {
    start(onlyDisplay("LEFT") + "kestrove.autoStart=true\n");
    ASSERT_TRUE(shows(left, "scaled"));
    placeOutput({rightPlace.x + 100, 60, leftPlace.width, leftPlace.height});
    EXPECT_TRUE(waitUntil([this] {
        const auto place = outputPlace();
        return place.width == leftPlace.width && place.height == leftPlace.height;
    }));
    EXPECT_TRUE(shows(left, "pixel for pixel"));
}

} // namespace
} // namespace kestrove::test
