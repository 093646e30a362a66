#include "UI/ActiveSourceOverlay/ActiveSourceOverlay.h"

#include "Platform/Simulated/SimulatedPlatform.h"
#include "Tests/Support/ScriptedWindow/ScriptedOverlayWindow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace kestrove {
namespace {

using Calls = std::vector<std::string>;

/// The main display, 1, is 1440 by 900; display 2, right of it, is 1920 by 1080.
class ActiveSourceOverlayTest : public testing::Test {
protected:
    ActiveSourceOverlayTest() {
        platform.desktop.addDisplay({.displayID = 1, .frame = {0, 0, 1440, 900}});
        platform.desktop.addDisplay({.displayID = 2, .frame = {1440, -180, 1920, 1080}});
        process = platform.desktop.launchApplication({.name = "Shared"});
        other = platform.desktop.launchApplication({.name = "Other"});
        platform.loop.runUntilIdle();
    }

    void makeOverlay(bool isTold) {
        auto made = std::make_unique<ScriptedOverlayWindow>(calls);
        window = made.get();
        ActiveSourceOverlaySurroundings surroundings{
            platform.loop, platform.windowServer, platform.screens, platform.desktop.ownProcess()};
        if (isTold) {
            surroundings.onWindowsChanged = [this](std::function<void()> callback) {
                return calls.watch(
                    "windows", platform.desktop.events().changed.subscribe(std::move(callback)));
            };
        }
        overlay = std::make_unique<ActiveSourceOverlay>(std::move(made), std::move(surroundings));
    }

    WindowID openWindow(const Rect& frame, ProcessID owner, double alpha = 1) {
        return platform.desktop.openWindow({.processID = owner, .alpha = alpha, .frame = frame});
    }

    void setOnScreen(WindowID changed, bool isOnScreen) {
        auto row = *platform.desktop.findWindow(changed);
        row.isOnScreen = isOnScreen;
        platform.desktop.setWindow(row);
    }

    void tick() { platform.loop.advance(ActiveSourceOverlay::trackingInterval); }

    SimulatedPlatform platform;
    CallLog calls;
    ProcessID process = 0;
    ProcessID other = 0;
    ScriptedOverlayWindow* window = nullptr;
    std::unique_ptr<ActiveSourceOverlay> overlay;
};

/// On a desktop that tells of nothing.
class OverlayTimer : public ActiveSourceOverlayTest {
protected:
    OverlayTimer() { makeOverlay(false); }
};

/// On a desktop that tells when windows change.
class OverlayEvents : public ActiveSourceOverlayTest {
protected:
    OverlayEvents() { makeOverlay(true); }

    void comeToRest() {
        platform.loop.runUntilIdle();
        platform.loop.advance(Seconds(2));
        calls.clear();
    }
};

TEST_F(OverlayTimer, GivesItsWindowsNumber) {
    EXPECT_EQ(overlay->windowID(), 77U);
    window->number = 0;
    EXPECT_FALSE(overlay->windowID());
    window->number = -1;
    EXPECT_FALSE(overlay->windowID());
    window->number = 1;
    EXPECT_EQ(overlay->windowID(), 1U);
}

TEST_F(OverlayTimer, DoesNothingUntilItIsShown) {
    platform.loop.advance(Seconds(2));
    EXPECT_TRUE(calls.take().empty());
    EXPECT_EQ(platform.loop.timerCount(), 0U);
}

TEST_F(OverlayTimer, MarksADisplayAtOnce) {
    overlay->show(CaptureSource::display(2));
    EXPECT_EQ(calls.take(), (Calls{"frame", "front"}));
    EXPECT_EQ(window->frame, (Rect{1440, -180, 1920, 1080}));
    EXPECT_EQ(platform.windowServer.callCount(), 0);
}

TEST_F(OverlayTimer, MarksAWindowInScreenCoordinates) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    overlay->show(CaptureSource::window(shared));
    EXPECT_EQ(calls.take(), (Calls{"frame", "front"}));
    EXPECT_EQ(window->frame, (Rect{100, 900 - 50 - 480, 640, 480}));
}

TEST_F(OverlayTimer, LooksOnceATickAndComesToTheFrontOnce) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    overlay->show(CaptureSource::window(shared));
    calls.clear();
    const int before = platform.windowServer.callCount();
    platform.loop.advance(Seconds(1.0001));
    EXPECT_EQ(platform.windowServer.callCount() - before, 30);
    EXPECT_EQ(calls.take(), Calls(30, "frame"));
}

TEST_F(OverlayTimer, FollowsAMovedWindowAtTheNextTick) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    overlay->show(CaptureSource::window(shared));
    platform.desktop.moveWindow(shared, {300, 60, 500, 400});
    tick();
    EXPECT_EQ(window->frame, (Rect{300, 900 - 60 - 400, 500, 400}));
}

TEST_F(OverlayTimer, GoesAtTheNextTickWhenTheWindowIsCoveredMinimisedOrClosed) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    overlay->show(CaptureSource::window(shared));
    const auto above = openWindow({0, 0, 1440, 900}, other);
    tick();
    EXPECT_FALSE(window->visible);
    calls.clear();
    tick();
    EXPECT_TRUE(calls.take().empty()) << "ordered out twice";

    platform.desktop.moveWindow(above, {0, 0, 739, 900});
    tick();
    EXPECT_TRUE(window->visible) << "one column is seen";

    setOnScreen(shared, false);
    tick();
    EXPECT_FALSE(window->visible);
    setOnScreen(shared, true);
    tick();
    EXPECT_TRUE(window->visible);

    platform.desktop.closeWindow(shared);
    tick();
    EXPECT_FALSE(window->visible);
}

TEST_F(OverlayTimer, IsNotHiddenByATranslucentWindow) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    openWindow({0, 0, 1440, 900}, other, 0.9);
    overlay->show(CaptureSource::window(shared));
    EXPECT_TRUE(window->visible);
}

TEST_F(OverlayTimer, NeverMarksAWindowOfOurOwn) {
    const auto own = openWindow({100, 50, 640, 480}, platform.desktop.ownProcess());
    overlay->show(CaptureSource::window(own));
    EXPECT_TRUE(calls.take().empty());
}

TEST_F(OverlayTimer, LeavesOutRowsThatLackWhatItNeeds) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    openWindow({0, 0, 1440, 900}, other);
    overlay->show(CaptureSource::window(shared));
    ASSERT_FALSE(window->visible);
    for (const auto field : {SimulatedWindowField::number, SimulatedWindowField::owner,
                             SimulatedWindowField::bounds}) {
        auto row = platform.desktop.windows().front();
        row.leftOut = {field};
        platform.desktop.setWindow(row);
        tick();
        EXPECT_TRUE(window->visible) << static_cast<int>(field);
        row.leftOut.clear();
        platform.desktop.setWindow(row);
        tick();
        EXPECT_FALSE(window->visible);
    }
    // Without layer and opacity it is a normal, opaque window.
    auto row = platform.desktop.windows().front();
    row.leftOut = {SimulatedWindowField::layer, SimulatedWindowField::alpha};
    platform.desktop.setWindow(row);
    tick();
    EXPECT_FALSE(window->visible);
}

TEST_F(OverlayTimer, GoesWhenTheWindowListCannotBeRead) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    overlay->show(CaptureSource::window(shared));
    platform.desktop.setWindowListReadable(false);
    tick();
    EXPECT_FALSE(window->visible);
}

TEST_F(OverlayTimer, GoesWithItsDisplayAndComesBackWithIt) {
    overlay->show(CaptureSource::display(2));
    const auto display = *platform.desktop.findDisplay(2);
    platform.desktop.removeDisplay(2);
    tick();
    EXPECT_FALSE(window->visible);
    platform.desktop.addDisplay(display);
    tick();
    EXPECT_TRUE(window->visible);
    EXPECT_EQ(window->frame, display.frame);
}

TEST_F(OverlayTimer, IsNotFooledByADisplayWithoutANumber) {
    auto display = *platform.desktop.findDisplay(2);
    display.hasScreenNumber = false;
    platform.desktop.setDisplay(display);
    overlay->show(CaptureSource::display(2));
    EXPECT_FALSE(window->visible);
}

TEST_F(OverlayTimer, TakesAnotherSourceAndKeepsOneTimer) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    overlay->show(CaptureSource::window(shared));
    platform.loop.advance(Seconds(0.02));
    overlay->show(CaptureSource::display(1));
    EXPECT_EQ(window->frame, (Rect{0, 0, 1440, 900}));
    EXPECT_EQ(platform.loop.timerCount(), 1U);
    calls.clear();
    // The timer was started anew.
    platform.loop.advance(Seconds(0.02));
    EXPECT_TRUE(calls.take().empty());
    platform.loop.advance(Seconds(0.02));
    EXPECT_EQ(calls.take(), Calls{"frame"});
}

TEST_F(OverlayTimer, HidesForGood) {
    overlay->show(CaptureSource::display(1));
    calls.clear();
    overlay->hide();
    EXPECT_EQ(calls.take(), Calls{"out"});
    EXPECT_EQ(platform.loop.timerCount(), 0U);
    platform.desktop.removeDisplay(2);
    platform.loop.advance(Seconds(2));
    EXPECT_TRUE(calls.take().empty());
}

TEST_F(OverlayTimer, EndsItsTimerWithItself) {
    overlay->show(CaptureSource::display(1));
    overlay.reset();
    EXPECT_EQ(platform.loop.timerCount(), 0U);
    platform.desktop.removeDisplay(2);
    platform.loop.advance(Seconds(1));
}

TEST_F(OverlayEvents, LooksOnceASecondWhileNothingChanges) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    overlay->show(CaptureSource::window(shared));
    comeToRest();
    const int before = platform.windowServer.callCount();
    platform.loop.advance(Seconds(10));
    EXPECT_EQ(platform.windowServer.callCount() - before, 10);
    EXPECT_EQ(platform.loop.timerCount(), 1U);
}

TEST_F(OverlayEvents, NeverLooksAtTheWindowsOfAStillDisplay) {
    overlay->show(CaptureSource::display(1));
    comeToRest();
    const int before = platform.windowServer.callCount();
    platform.loop.advance(Seconds(10));
    EXPECT_EQ(platform.windowServer.callCount(), before);
}

TEST_F(OverlayEvents, FollowsADragWithoutLaggingMoreThanATick) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    overlay->show(CaptureSource::window(shared));
    comeToRest();
    const int before = platform.windowServer.callCount();
    Rect frame{100, 50, 640, 480};
    for (int step = 0; step < 200; ++step) {
        frame.x += 1;
        const Rect aTickAgo{std::max(101.0, frame.x - 7), 370, 640, 480};
        platform.desktop.moveWindow(shared, frame);
        platform.loop.advance(Seconds(0.005));
        EXPECT_GE(window->frame.x, aTickAgo.x) << "step " << step;
    }
    tick();
    EXPECT_EQ(window->frame.x, frame.x);
    EXPECT_LE(platform.windowServer.callCount() - before, 33) << "faster than 30 a second";
}

TEST_F(OverlayEvents, FollowsTheFirstMoveAfterARestAtOnce) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    overlay->show(CaptureSource::window(shared));
    comeToRest();
    platform.desktop.moveWindow(shared, {101, 50, 640, 480});
    platform.loop.runUntilIdle();
    EXPECT_EQ(window->frame.x, 101);
}

TEST_F(OverlayEvents, GoesOnForAWhileAfterTheLastChange) {
    const auto shared = openWindow({100, 50, 640, 480}, process);
    overlay->show(CaptureSource::window(shared));
    comeToRest();
    platform.desktop.moveWindow(shared, {101, 50, 640, 480});
    const int before = platform.windowServer.callCount();
    platform.loop.advance(Seconds(0.4));
    EXPECT_GE(platform.windowServer.callCount() - before, 12);
    platform.loop.advance(Seconds(0.2));
    const int rested = platform.windowServer.callCount();
    platform.loop.advance(Seconds(0.8));
    EXPECT_EQ(platform.windowServer.callCount(), rested);
}

TEST_F(OverlayEvents, CatchesAChangeThatWasNotToldWithinASecond) {
    auto made = std::make_unique<ScriptedOverlayWindow>(calls);
    window = made.get();
    overlay = std::make_unique<ActiveSourceOverlay>(
        std::move(made),
        ActiveSourceOverlaySurroundings{platform.loop, platform.windowServer, platform.screens,
                                        platform.desktop.ownProcess(),
                                        [](const auto&) { return Subscription([] {}); }});
    const auto shared = openWindow({100, 50, 640, 480}, process);
    overlay->show(CaptureSource::window(shared));
    comeToRest();
    platform.desktop.moveWindow(shared, {700, 50, 640, 480});
    platform.loop.advance(Seconds(1));
    EXPECT_EQ(window->frame.x, 700);
}

TEST_F(OverlayEvents, ComesBackAboveANormalWindowThatWasPutAboveIt) {
    overlay->show(CaptureSource::display(1));
    platform.desktop.openWindow(
        {.windowID = 77, .processID = platform.desktop.ownProcess(), .layer = 3});
    comeToRest();
    EXPECT_TRUE(window->visible);
    // A menu may lie above it.
    const auto menu = platform.desktop.openWindow({.processID = other, .layer = 101});
    tick();
    EXPECT_EQ(std::ranges::count(calls.take(), "front"), 0);
    platform.desktop.closeWindow(menu);
    const auto normal = openWindow({0, 0, 500, 500}, other);
    tick();
    EXPECT_EQ(std::ranges::count(calls.take(), "front"), 1);
    platform.desktop.closeWindow(normal);
}

TEST_F(OverlayEvents, ListensOnlyWhileItMarksSomething) {
    overlay->show(CaptureSource::display(1));
    EXPECT_EQ(calls.take(), (Calls{"watch windows", "frame", "front"}));
    overlay->hide();
    EXPECT_EQ(calls.take(), (Calls{"unwatch windows", "out"}));
    platform.desktop.removeDisplay(2);
    platform.loop.runUntilIdle();
    EXPECT_TRUE(calls.take().empty());
}

} // namespace
} // namespace kestrove
