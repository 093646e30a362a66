#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/X11/Application/ApplicationFixture.h"

#include <cstdlib>

namespace kestrove::test {
namespace {

/// With a window manager, and without any. The pointer is free for the menu: the right display is
/// shared, whatever it is over, and the output lies on the left one.
class Controls : public ApplicationFixture, public testing::WithParamInterface<WindowManager> {
protected:
    Controls()
        : ApplicationFixture(GetParam()) {
        start(onlyDisplay("RIGHT"));
    }
};

INSTANTIATE_TEST_SUITE_P(Desks, Controls,
                         testing::Values(WindowManager::openbox, WindowManager::none),
                         [](const auto& tested) {
                             return tested.param == WindowManager::none ? "Bare" : "Openbox";
                         });

TEST_P(Controls, WaitForTheUserAndStartByKey) {
    EXPECT_TRUE(showsPlaceholder("idle"));
    press(Key::returnKey);
    EXPECT_TRUE(shows(right, "started"));
}

TEST_P(Controls, StartAndStopByTheMenu) {
    ASSERT_TRUE(showsPlaceholder("idle"));
    openMenuByMouse();
    chooseFromMenu(1);
    ASSERT_TRUE(shows(right, "started"));

    openMenuByMouse();
    chooseFromMenu(1);
    EXPECT_TRUE(showsPlaceholder("stopped"));
    right.paint({10, 500, 300, 250}, 0xffffffff);

    openMenuByKey();
    chooseFromMenu(1);
    EXPECT_TRUE(shows(right, "started again"));
}

TEST_P(Controls, KeepTheSizeThatTheUserHasChosenRightAfterTheStart) {
    const auto startOrStop = [this] {
        pressTogether(desktop.connection(), {ServerKey::control, ServerKey::super, ServerKey::s});
    };
    press(Key::space);
    ASSERT_TRUE(shows(right, "started"));
    ASSERT_TRUE(waitUntil([this] {
        const auto now = outputPlace();
        return std::abs(now.width * rightPlace.height - now.height * rightPlace.width) <=
               rightPlace.width;
    })) << "it takes the shape of the display first";
    constexpr xcb_rectangle_t chosen{20, 40, 600, 375};
    placeOutput(chosen);
    ASSERT_TRUE(shows(right, "in its new size"));
    // A hand that rests has chosen a size: asked so often, it has rested for long enough.
    int inARow = 0;
    constexpr int enough = 500;
    ASSERT_TRUE(waitUntil([&] {
        inARow = outputPlace().width == chosen.width ? inARow + 1 : 0;
        return inARow >= enough;
    }));
    startOrStop();
    ASSERT_TRUE(showsPlaceholder("stopped"));
    startOrStop();
    EXPECT_TRUE(shows(right, "started again"));
    EXPECT_EQ(outputPlace().width, chosen.width);
    EXPECT_EQ(outputPlace().height, chosen.height);
}

TEST_P(Controls, KeepSharingWhenTheMenuIsLeftByEscape) {
    press(Key::space);
    ASSERT_TRUE(shows(right, "started"));
    openMenuByMouse();
    server.press(Key::escape);
    EXPECT_TRUE(waitUntil([this] { return !isMenuOpen(); }));
    right.paint({10, 500, 300, 250}, 0xffffffff);
    EXPECT_TRUE(shows(right, "goes on"));
}

TEST_P(Controls, QuitByTheMenu) {
    openMenuByKey();
    chooseFromMenuEnd(1);
    EXPECT_TRUE(endsWith(0));
}

TEST_P(Controls, StartByTheCommandMenuAndQuitByKey) {
    ASSERT_TRUE(showsPlaceholder("idle"));
    press(Key::f10);
    ASSERT_TRUE(waitUntil([this] { return isMenuOpen(); }));
    server.press(Key::returnKey); // its first entry is chosen from the start
    ASSERT_TRUE(shows(right, "started"));
    ASSERT_TRUE(waitUntil([this] { return !isMenuOpen() && hasFocus(); }));
    pressTogether(desktop.connection(), {ServerKey::control, ServerKey::q});
    EXPECT_TRUE(endsWith(0));
}

} // namespace
} // namespace kestrove::test
