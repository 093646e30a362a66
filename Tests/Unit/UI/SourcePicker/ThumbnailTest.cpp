#include "UI/SourcePicker/Thumbnail.h"

#include <gtest/gtest.h>

#include <ostream>

namespace kestrove {
namespace {

struct SizeCase {
    double width;
    double height;
    std::int64_t expectedHeight;

    friend std::ostream& operator<<(std::ostream& out, const SizeCase& each) {
        return out << each.width << " x " << each.height;
    }
};

class ThumbnailSize : public testing::TestWithParam<SizeCase> {};

TEST_P(ThumbnailSize, KeepsTheProportionsAndRoundsDown) {
    const auto [width, height, expected] = GetParam();
    ShareableContent content;
    CapturableWindow window;
    window.windowID = 5;
    window.frame = {10, 20, width, height};
    content.windows = {window};
    const auto request = thumbnailRequest(CaptureSource::window(5), content, {});
    ASSERT_TRUE(request);
    EXPECT_EQ(request->configuration.width, 480);
    EXPECT_EQ(request->configuration.height, expected);
    EXPECT_FALSE(request->configuration.showsCursor);
}

INSTANTIATE_TEST_SUITE_P(Sizes, ThumbnailSize,
                         testing::Values(SizeCase{480, 300, 300}, SizeCase{1920, 1080, 270},
                                         SizeCase{1000, 333, 159}, SizeCase{0.5, 3, 1440},
                                         SizeCase{0, 3, 1440}, SizeCase{3000, 1, 0},
                                         SizeCase{200, 100, 240}));

TEST(Thumbnail, OfAWindowIsOfThisWindowAlone) {
    ShareableContent content;
    CapturableWindow window;
    window.windowID = 5;
    window.frame = {0, 0, 300, 200};
    content.windows = {window};
    const auto request = thumbnailRequest(CaptureSource::window(5), content, {5});
    ASSERT_TRUE(request);
    EXPECT_EQ(request->filter, ContentFilter(WindowFilter(5)));
}

TEST(Thumbnail, OfADisplayLeavesOutThoseOfOurWindowsThatAreThere) {
    ShareableContent content;
    content.displays = {{1, 1280, 800}, {2, 640, 512}};
    CapturableWindow window;
    for (const WindowID identifier : {7U, 8U, 9U}) {
        window.windowID = identifier;
        content.windows.push_back(window);
    }
    const auto request = thumbnailRequest(CaptureSource::display(2), content, {9, 7, 50});
    ASSERT_TRUE(request);
    EXPECT_EQ(request->filter, ContentFilter(DisplayFilter(2, {7, 9})));
    EXPECT_EQ(request->configuration.height, 384);
}

TEST(Thumbnail, IsNotThereForWhatIsNotThere) {
    ShareableContent content;
    content.displays = {{1, 1280, 800}};
    EXPECT_FALSE(thumbnailRequest(CaptureSource::window(1), content, {}));
    EXPECT_FALSE(thumbnailRequest(CaptureSource::display(2), content, {}));
}

} // namespace
} // namespace kestrove
