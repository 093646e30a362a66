#include "Tests/Unit/UI/OutputWindow/OutputWindowFixture.h"

namespace kestrove {
namespace {

class OutputWindowHidingTest : public OutputWindowFixture {};

TEST_F(OutputWindowHidingTest, HidingParksTheWindowOutsideEveryScreen) {
    makeControllerAt({300, 200, 800, 600});
    controller->setHidden(true);
    EXPECT_TRUE(controller->isHiddenFromUser());
    EXPECT_EQ(window->current, (Rect{-800, -600, 800, 600}));
    EXPECT_EQ(calls.take(), (Calls{"allow offscreen", "setFrame", "orderFrontRegardless"}));
}

TEST_F(OutputWindowHidingTest, AMiniaturizedWindowComesBackToBeCaptured) {
    makeControllerAt({300, 200, 800, 600});
    window->miniaturized = true;
    controller->setHidden(true);
    EXPECT_EQ(calls.take(),
              (Calls{"allow offscreen", "setFrame", "deminiaturize", "orderFrontRegardless"}));
}

TEST_F(OutputWindowHidingTest, UnhidingBringsItBackWhereItWas) {
    makeControllerAt({300, 200, 800, 600});
    controller->setHidden(true);
    calls.clear();
    controller->setHidden(false);
    EXPECT_FALSE(controller->isHiddenFromUser());
    EXPECT_EQ(window->current, (Rect{300, 200, 800, 600}));
    EXPECT_EQ(calls.take(),
              (Calls{"forbid offscreen", "setFrame redisplay", "orderFrontRegardless"}));
}

TEST_F(OutputWindowHidingTest, HidingTwiceOrUnhidingTwiceChangesNothing) {
    makeControllerAt({300, 200, 800, 600});
    controller->setHidden(false);
    EXPECT_EQ(calls.take(), Calls{});
    controller->setHidden(true);
    calls.clear();
    controller->setHidden(true);
    EXPECT_EQ(calls.take(), Calls{});
    controller->setHidden(false);
    EXPECT_EQ(window->current, (Rect{300, 200, 800, 600}));
}

TEST_F(OutputWindowHidingTest, WithoutAPlaceOffScreenNothingIsHidden) {
    makeControllerAt({300, 200, 800, 600});
    screens.list.clear();
    controller->setHidden(true);
    EXPECT_FALSE(controller->isHiddenFromUser());
    EXPECT_EQ(calls.take(), Calls{});
    EXPECT_EQ(window->current, (Rect{300, 200, 800, 600}));
}

TEST_F(OutputWindowHidingTest, BornHiddenItIsOnTheDesktopFromTheStart) {
    makeController({.hidden = true});
    EXPECT_TRUE(controller->isHiddenFromUser());
    EXPECT_FALSE(isOnAnyScreen(window->current));
    EXPECT_EQ(calls.take(), (Calls{"center", "allow offscreen", "setFrame"}));
    loop.runUntilIdle();
    EXPECT_EQ(calls.take(), Calls{"orderFrontRegardless"});
}

TEST_F(OutputWindowHidingTest, BornHiddenAndUnhiddenAtOnceItIsNotOrderedTwice) {
    makeController({.hidden = true});
    controller->setHidden(false);
    calls.clear();
    loop.runUntilIdle();
    EXPECT_EQ(calls.take(), Calls{});
    EXPECT_EQ(window->current.origin(), initialOrigin);
}

TEST_F(OutputWindowHidingTest, BornHiddenAndGoneAtOnceNothingIsTouched) {
    makeController({.hidden = true});
    calls.clear();
    controller.reset();
    loop.runUntilIdle();
    EXPECT_EQ(calls.take(), Calls{});
}

TEST_F(OutputWindowHidingTest, BornHiddenWithoutScreensItIsNotShown) {
    screens.list.clear();
    makeController({.hidden = true});
    loop.runUntilIdle();
    EXPECT_FALSE(controller->isHiddenFromUser());
    EXPECT_EQ(calls.take(), Calls{"center"});
}

TEST_F(OutputWindowHidingTest, ItComesBackToItsDisplayWhereverThatIsNow) {
    makeControllerAt({2560 + 1120, 100, 800, 600});
    controller->setHidden(true);
    screens.list[1].frame = screens.list[1].visibleFrame = {-1000, 0, 1000, 800};
    controller->setHidden(false);
    EXPECT_EQ(window->current, (Rect{-800, 0, 800, 600}));
}

TEST_F(OutputWindowHidingTest, ItComesBackToTheMainScreenWhenItsDisplayIsGone) {
    // At the top right of the second display: 1 of 1 an axis.
    makeControllerAt({2560 + 1120, 100 + 480, 800, 600});
    controller->setHidden(true);
    screens.list.pop_back();
    controller->setHidden(false);
    EXPECT_EQ(window->current, (Rect{2560 - 800, 1400 - 600, 800, 600}));
}

TEST_F(OutputWindowHidingTest, TheMainScreenCountsEvenIfAnotherOverlapsMore) {
    screens.add({2560, 1180, 1920, 1080}, 3);
    makeControllerAt({2560, 100 + 480, 800, 600});
    controller->setHidden(true);
    // Display 2 goes, display 3 takes its place under the remembered frame.
    screens.list.erase(screens.list.begin() + 1);
    screens.list.back().frame = screens.list.back().visibleFrame = {2560, 100, 1920, 1080};
    controller->setHidden(false);
    EXPECT_LT(window->current.maxX(), 2560.1);
}

TEST_F(OutputWindowHidingTest, AWindowTooLargeForTheScreenThatIsLeftIsFitted) {
    makeControllerAt({2560, 100, 1920, 1080});
    controller->setHidden(true);
    screens.list.pop_back();
    screens.list[0].frame = {0, 0, 960, 720};
    screens.list[0].visibleFrame = {0, 0, 960, 700};
    controller->setHidden(false);
    EXPECT_EQ(window->current, (Rect{0, 80, 960, 540}));
}

TEST_F(OutputWindowHidingTest, WithoutAnyScreenItComesBackToItsFrame) {
    makeControllerAt({300, 200, 800, 600});
    controller->setHidden(true);
    screens.list.clear();
    controller->setHidden(false);
    EXPECT_EQ(window->current, (Rect{300, 200, 800, 600}));
    EXPECT_EQ(calls.take().back(), "orderFrontRegardless");
}

TEST_F(OutputWindowHidingTest, UnhiddenItHasTheShapeOfASourceThatCameMeanwhile) {
    makeControllerAt({300, 200, 804, 632});
    controller->matchContentAspectRatio({800, 600});
    controller->setHidden(true);
    controller->matchContentAspectRatio({1600, 400});
    controller->setHidden(false);
    EXPECT_EQ(window->contentSize(), (Size{800, 200}));
    // At the same relative place, not around the same centre.
    EXPECT_NEAR(window->current.x, 300, 1e-9);
    EXPECT_NEAR(window->current.y, 200.0 / (1400 - 632) * (1400 - 232), 1e-9);
}

} // namespace
} // namespace kestrove
