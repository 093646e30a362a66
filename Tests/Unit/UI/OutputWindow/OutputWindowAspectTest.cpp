#include "Tests/Unit/UI/OutputWindow/OutputWindowFixture.h"

namespace kestrove {
namespace {

class OutputWindowAspectTest : public OutputWindowFixture {
protected:
    /// A window of 800 by 600 points of content.
    void makeUsualController() { makeControllerAt({298, 198, 804, 632}); }
    const Point usualCenter{700, 514};
};

TEST_F(OutputWindowAspectTest, TheFirstMatchTakesTheCurrentContentAsTheBox) {
    makeUsualController();
    controller->matchContentAspectRatio({1600, 800});
    EXPECT_EQ(window->current, frameAround(usualCenter, {800, 400}));
    EXPECT_EQ(window->aspectRatio, (Size{1600, 800}));
    EXPECT_EQ(calls.take(), Calls{"setFrame redisplay"});
    // The box stays what it was: the next source fills its height again.
    controller->matchContentAspectRatio({300, 600});
    EXPECT_EQ(window->current, frameAround(usualCenter, {300, 600}));
}

TEST_F(OutputWindowAspectTest, AUsersResizeReplacesTheBox) {
    makeUsualController();
    controller->matchContentAspectRatio({1600, 800});
    resizeByUser(frameAround({1000, 700}, {1000, 500}));
    controller->matchContentAspectRatio({400, 400});
    EXPECT_EQ(window->current, frameAround({1000, 700}, {500, 500}));
}

TEST_F(OutputWindowAspectTest, AResizeBeforeTheFirstMatchIsTheBoxToo) {
    makeUsualController();
    resizeByUser(frameAround({1000, 700}, {1000, 500}));
    window->current = frameAround({1000, 700}, {100, 100});
    controller->matchContentAspectRatio({400, 400});
    EXPECT_EQ(window->contentSize(), (Size{500, 500}));
}

TEST_F(OutputWindowAspectTest, ASourceWithoutASizeOnlySetsTheBox) {
    makeUsualController();
    const auto before = window->current;
    for (const Size empty : {Size{0, 100}, Size{100, 0}, Size{-5, 100}}) {
        controller->matchContentAspectRatio(empty);
        EXPECT_EQ(window->current, before);
        EXPECT_EQ(window->aspectRatio, std::nullopt);
    }
    EXPECT_EQ(calls.take(), Calls{});
    window->current = frameAround(usualCenter, {100, 100});
    controller->matchContentAspectRatio({400, 300});
    EXPECT_EQ(window->contentSize(), (Size{800, 600}));
    controller->matchContentAspectRatio({0, 0});
    controller->show();
    EXPECT_EQ(window->contentSize(), (Size{800, 600})) << "the matched size was lost";
}

TEST_F(OutputWindowAspectTest, TheContentIsRoundedDown) {
    makeUsualController();
    controller->matchContentAspectRatio({1000, 333});
    EXPECT_EQ(window->contentSize(), (Size{800, 266}));
}

TEST_F(OutputWindowAspectTest, TheLimitingAxisFillsTheBoxWhateverTheRounding) {
    makeUsualController();
    for (int width = 1; width < 4000; ++width) {
        controller->matchContentAspectRatio({static_cast<double>(width), 1});
        const auto content = window->contentSize();
        EXPECT_TRUE(content.width == 800 || content.height == 600)
            << width << " gives " << content.width << " by " << content.height;
    }
}

TEST_F(OutputWindowAspectTest, TheScreenLimitsTheBox) {
    makeControllerAt({2600, 200, 804, 632});
    resizeByUser(frameAround({3520, 640}, {3000, 3000}));
    controller->matchContentAspectRatio({1920, 1080});
    // 1080 less the title bar and the border, and the width that belongs to that height.
    EXPECT_EQ(window->contentSize(), (Size{1863, 1048}));
    EXPECT_EQ(window->current.maxY(), 1180);
}

TEST_F(OutputWindowAspectTest, ItIsPushedOntoTheScreenThatHoldsMostOfIt) {
    makeControllerAt({2200, 1000, 804, 332});
    resizeByUser(frameAround({2500, 1300}, {400, 300}));
    controller->matchContentAspectRatio({300, 300});
    EXPECT_EQ(window->contentSize(), (Size{300, 300}));
    EXPECT_EQ(window->current.maxX(), 2560);
    EXPECT_EQ(window->current.maxY(), 1400);
}

TEST_F(OutputWindowAspectTest, WithoutAScreenTheFrameStays) {
    makeUsualController();
    const auto before = window->current;
    screens.list.clear();
    controller->matchContentAspectRatio({1600, 800});
    EXPECT_EQ(window->current, before);
    EXPECT_EQ(window->aspectRatio, (Size{1600, 800}));
}

TEST_F(OutputWindowAspectTest, DecorationsThatAreToldLateLeaveTheContentItsShape) {
    makeUsualController();
    controller->matchContentAspectRatio({800, 600});
    // They take 50 points more of the frame, and the content loses them.
    window->titleBar += 50;
    EXPECT_EQ(window->contentSize(), (Size{800, 550}));
    window->decorationsChanged.emit();
    EXPECT_EQ(window->contentSize(), (Size{800, 600}));
    EXPECT_EQ(window->current.center(), usualCenter);
}

TEST_F(OutputWindowAspectTest, DecorationsThatAreToldLateDoNotPushAFullFrameOffTheScreen) {
    makeControllerAt({0, 0, 2560, 1400});
    controller->matchContentAspectRatio({2560, 1400});
    window->titleBar += 50;
    window->decorationsChanged.emit();
    EXPECT_LE(window->current.maxY(), 1400);
    EXPECT_GE(window->current.minY(), 0);
    EXPECT_NEAR(window->contentSize().width / window->contentSize().height, 2560.0 / 1400, 2e-3);
}

TEST_F(OutputWindowAspectTest, DecorationsAloneMoveNothing) {
    makeUsualController();
    window->decorationsChanged.emit();
    controller->matchContentAspectRatio({800, 600});
    controller->setHidden(true);
    calls.clear();
    window->decorationsChanged.emit();
    EXPECT_EQ(calls.take(), Calls{}) << "no source yet, or parked";
}

TEST_F(OutputWindowAspectTest, AMatchWhileHiddenChangesOnlyWhatWillBeSeen) {
    makeUsualController();
    controller->setHidden(true);
    calls.clear();
    const auto origin = window->current.origin();
    controller->matchContentAspectRatio({1600, 800});
    EXPECT_EQ(calls.take(), Calls{"setFrame"});
    EXPECT_EQ(window->current.origin(), origin);
    EXPECT_EQ(window->contentSize(), (Size{800, 400}));
    EXPECT_FALSE(isOnAnyScreen(window->current));
    EXPECT_EQ(window->aspectRatio, (Size{1600, 800}));
}

TEST_F(OutputWindowAspectTest, TheCentreToComeBackToIsKeptWhileHidden) {
    makeUsualController();
    screens.list.resize(1);
    screens.list[0].displayID.reset();
    controller->setHidden(true);
    controller->matchContentAspectRatio({1600, 800});
    // Without any screen nothing but the remembered frame decides.
    screens.list.clear();
    controller->setHidden(false);
    EXPECT_EQ(window->current, frameAround(usualCenter, {800, 400}));
}

TEST_F(OutputWindowAspectTest, AWindowThatGrowsWhileHiddenIsNotSeen) {
    // The user's box is larger than the screen that the window was on, so hidden it grows.
    screens.list.resize(1);
    screens.list[0].frame = {0, 0, 1280, 800};
    screens.list[0].visibleFrame = {0, 0, 1280, 760};
    makeControllerAt({0, 0, 804, 632});
    resizeByUser(frameAround({640, 380}, {1920, 1080}));
    controller->matchContentAspectRatio({1920, 1080});
    controller->setHidden(true);
    controller->matchContentAspectRatio({1920, 1080});
    EXPECT_EQ(window->contentSize(), (Size{1920, 1080}));
    EXPECT_FALSE(isOnAnyScreen(window->current));
}

} // namespace
} // namespace kestrove
