#include "Tests/Unit/UI/OutputWindow/OutputWindowFixture.h"

namespace kestrove {
namespace {

class OutputWindowShowTest : public OutputWindowFixture {};

TEST_F(OutputWindowShowTest, TheWindowIsMadeAsUsersKnowIt) {
    makeController();
    EXPECT_EQ(window->contentSize(), (Size{1920, 1080}));
    for (const auto style : {WindowStyle::titled, WindowStyle::closable,
                             WindowStyle::miniaturizable, WindowStyle::resizable})
        EXPECT_TRUE(has(window->style, style));
    EXPECT_EQ(window->title, "kestrove");
    EXPECT_EQ(window->contentView, &view);
    EXPECT_EQ(static_cast<unsigned>(*window->behavior), 0x201U);
    EXPECT_EQ(window->level, WindowLevel::normal);
    EXPECT_EQ(window->minimumSize, (Size{480, 270}));
    EXPECT_FALSE(window->allowsOffscreenPositioning);
    EXPECT_EQ(calls.take(), Calls{"center"}) << "shown before it was asked for";
}

TEST_F(OutputWindowShowTest, FloatsOnRequest) {
    makeController({.alwaysOnTop = true});
    EXPECT_EQ(window->level, WindowLevel::floating);
    controller->setAlwaysOnTop(false);
    EXPECT_EQ(window->level, WindowLevel::normal);
    controller->setAlwaysOnTop(true);
    EXPECT_EQ(window->level, WindowLevel::floating);
}

TEST_F(OutputWindowShowTest, TheIdentifierIsAbsentWithoutANumber) {
    makeController();
    EXPECT_EQ(controller->windowID(), 17U);
    for (const std::int64_t number : {0, -1}) {
        window->number = number;
        EXPECT_EQ(controller->windowID(), std::nullopt);
    }
    window->number = 1;
    EXPECT_EQ(controller->windowID(), 1U);
}

TEST_F(OutputWindowShowTest, NothingHappensWithoutAWindow) {
    canMakeWindows = false;
    makeController({.alwaysOnTop = true, .hidden = true});
    controller->show();
    controller->setHidden(true);
    controller->setHidden(false);
    controller->setAlwaysOnTop(true);
    controller->matchContentAspectRatio({100, 100});
    loop.runUntilIdle();
    EXPECT_EQ(controller->windowID(), std::nullopt);
    EXPECT_FALSE(controller->isHiddenFromUser());
    EXPECT_FALSE(application.active);
}

TEST_F(OutputWindowShowTest, ShowBringsTheApplicationAndTheWindowToTheFront) {
    makeControllerAt({300, 200, 800, 600});
    application.policy = ActivationPolicy::accessory;
    controller->show();
    EXPECT_EQ(application.policy, ActivationPolicy::regular);
    EXPECT_TRUE(application.active);
    EXPECT_EQ(calls.take(),
              (Calls{"setFrame redisplay", "makeKeyAndOrderFront", "orderFrontRegardless"}));
    EXPECT_EQ(window->current, (Rect{300, 200, 800, 600}));
}

TEST_F(OutputWindowShowTest, ShowLeavesFullScreenFirst) {
    makeControllerAt({300, 200, 800, 600});
    window->fullScreen = true;
    controller->show();
    EXPECT_FALSE(window->fullScreen);
    EXPECT_EQ(calls.take().front(), "toggleFullScreen");
}

TEST_F(OutputWindowShowTest, ShowBringsAWindowBackOntoItsScreen) {
    makeControllerAt({-100, 1000, 800, 600});
    controller->show();
    EXPECT_EQ(window->current, (Rect{0, 800, 800, 600}));
}

TEST_F(OutputWindowShowTest, ShowRefitsToTheSourceAndTheUsersBox) {
    makeControllerAt({300, 200, 804, 632});
    controller->matchContentAspectRatio({800, 600});
    EXPECT_EQ(window->contentSize(), (Size{800, 600}));
    window->current = {300, 200, 404, 332};
    controller->show();
    EXPECT_EQ(window->current, frameAround({502, 366}, {800, 600}));
}

TEST_F(OutputWindowShowTest, ShowWithoutAScreenKeepsTheFrame) {
    makeControllerAt({-100, 1000, 800, 600});
    screens.list.clear();
    controller->show();
    EXPECT_EQ(window->current, (Rect{-100, 1000, 800, 600}));
    EXPECT_EQ(calls.take().back(), "orderFrontRegardless");
}

TEST_F(OutputWindowShowTest, ShowWhileHiddenLeavesTheWindowParked) {
    makeControllerAt({300, 200, 800, 600});
    controller->setHidden(true);
    const auto parked = window->current;
    window->miniaturized = true;
    calls.clear();
    controller->show();
    EXPECT_EQ(calls.take(), (Calls{"deminiaturize", "orderFrontRegardless"}));
    controller->show();
    EXPECT_EQ(calls.take(), Calls{"orderFrontRegardless"});
    EXPECT_EQ(window->current, parked);
    EXPECT_FALSE(application.active);
}

} // namespace
} // namespace kestrove
