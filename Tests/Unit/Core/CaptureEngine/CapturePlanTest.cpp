#include "Core/CaptureEngine/CapturePlan.h"
#include "Core/CaptureEngine/BackingScale.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

Screen makeScreen(Rect frame, std::optional<DisplayID> identifier, double scale) {
    Screen screen;
    screen.frame = frame;
    screen.displayID = identifier;
    screen.backingScaleFactor = scale;
    return screen;
}

CapturableWindow makeWindow(WindowID identifier, Rect frame) {
    CapturableWindow window;
    window.windowID = identifier;
    window.frame = frame;
    return window;
}

/// Two displays, the second one main, and windows on both and on none.
class CapturePlanTest : public testing::Test {
protected:
    CapturePlanTest() {
        screens[1].isMain = true;
        content.displays = {{7, 100, 50}, {9, 1512, 982}};
        content.windows = {makeWindow(30, {10, 10, 100, 50}), makeWindow(20, {0, 0, 800, 600}),
                           makeWindow(40, {-5000, -5000, 640, 480})};
    }

    Size pixels(CaptureSource source) const {
        return pixelSize(*planCapture(source, content, {}), screens);
    }

    std::vector<Screen> screens{makeScreen({0, 0, 1000, 800}, 7, 2),
                                makeScreen({1000, 0, 1512, 982}, 9, 1.5)};
    ShareableContent content;
};

TEST_F(CapturePlanTest, ADisplayIsFilteredWithTheExcludedWindowsInTheContentsOrder) {
    const auto plan = planCapture(CaptureSource::display(9), content, {20, 30});
    EXPECT_EQ(contentFilter(*plan), ContentFilter(DisplayFilter(9, {30, 20})));
}

TEST_F(CapturePlanTest, AnExcludedWindowThatIsNotListedYetIsLeftOutAllTheSame) {
    const auto plan = planCapture(CaptureSource::display(9), content, {10, 20, 30, 99});
    EXPECT_EQ(contentFilter(*plan), ContentFilter(DisplayFilter(9, {30, 20, 10, 99})));
}

TEST_F(CapturePlanTest, AWindowIsFilteredByItself) {
    const auto plan = planCapture(CaptureSource::window(20), content, {20, 30});
    EXPECT_EQ(contentFilter(*plan), ContentFilter(WindowFilter(20)));
}

TEST_F(CapturePlanTest, WhatIsNotInTheContentIsNotFound) {
    EXPECT_EQ(planCapture(CaptureSource::display(8), content, {}).error(),
              EngineError::displayNotFound);
    EXPECT_EQ(planCapture(CaptureSource::window(7), content, {}).error(),
              EngineError::windowNotFound);
}

TEST_F(CapturePlanTest, ADisplayHasThePixelsOfItsScreen) {
    EXPECT_EQ(pixels(CaptureSource::display(7)), (Size{200, 100}));
    EXPECT_EQ(pixels(CaptureSource::display(9)), (Size{2268, 1473}));
}

TEST_F(CapturePlanTest, ASmallWindowIsEnlargedByOneFactor) {
    EXPECT_EQ(pixels(CaptureSource::window(30)), (Size{540, 270}));
}

TEST_F(CapturePlanTest, AWindowOnNoScreenIsTakenAtTwice) {
    EXPECT_EQ(pixels(CaptureSource::window(40)), (Size{1280, 960}));
}

TEST_F(CapturePlanTest, TheScaleOfADisplayFallsBackToTheMainScreenThenToTwo) {
    EXPECT_EQ(backingScaleForDisplay(7, screens), 2);
    EXPECT_EQ(backingScaleForDisplay(9, screens), 1.5);
    EXPECT_EQ(backingScaleForDisplay(1, screens), 1.5);
    screens[1].isMain = false;
    EXPECT_EQ(backingScaleForDisplay(1, screens), 2);
    EXPECT_EQ(backingScaleForDisplay(1, {}), 2);
}

TEST_F(CapturePlanTest, AScreenWithoutAnIdentifierIsNoDisplays) {
    EXPECT_EQ(backingScaleForDisplay(0, {makeScreen({0, 0, 10, 10}, std::nullopt, 3)}), 2);
}

TEST_F(CapturePlanTest, TheScaleOfAWindowIsThatAtItsCentreAsItStands) {
    EXPECT_EQ(backingScaleForWindowAt({900, 0, 180, 100}, screens), 2);
    EXPECT_EQ(backingScaleForWindowAt({900, 0, 200, 100}, screens), 1.5);
    EXPECT_EQ(backingScaleForWindowAt({900, -200, 200, 100}, screens), 2);
    // 850 down from the top of the main screen is 132 up from its bottom, which is on the first
    // screen; 850 up is not.
    screens[0].backingScaleFactor = 1;
    EXPECT_EQ(backingScaleForWindowAt({0, 800, 100, 100}, screens), 2);
}

} // namespace
} // namespace kestrove
