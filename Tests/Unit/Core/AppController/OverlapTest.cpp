#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <algorithm>
#include <gtest/gtest.h>

// What an earlier session or an earlier request left at the engine or the lister, coming back late.

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Order = AwaitGate::Order;
using Events = std::vector<std::string>;

void letThrough(ControllerBench& bench, Order order) {
    bench.gate.letThrough(order);
    bench.settle();
}

/// The permission goes, and a refresh finds out: the session begins to stop itself.
void losePermission(ControllerBench& bench) {
    bench.lister.failure = PlatformError("X11", 1);
    bench.permission = ScreenRecordingPermission::revoked;
    bench.scheduler.tick();
    bench.settle();
    letThrough(bench, Order::newestFirst);
}

TEST(AppControllerOverlap, ASwitchOnItsWayShowsNothingWhileTheSessionStopsItself) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.gate.hold();
    bench.pointAt(2);
    losePermission(bench);
    ASSERT_EQ(bench.gate.waiting(), (Events{"engine switch display 2", "engine stop"}));
    (void)bench.events();
    letThrough(bench, Order::oldestFirst);
    EXPECT_EQ(bench.events(), Events());
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::permissionRequired(ScreenRecordingPermission::revoked));
    EXPECT_EQ(bench.engine.currentSource(), std::nullopt);
}

TEST(AppControllerOverlap, ASessionThatStopsItselfEndsWhatCameToBeShownMeanwhile) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.gate.hold();
    losePermission(bench);
    ASSERT_EQ(bench.gate.waiting(), Events{"engine stop"});
    bench.controller->toggleSource(window5, editor);
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), (Events{"engine stop", "engine switch window 5"}));
    letThrough(bench, Order::newestFirst);
    ASSERT_EQ(bench.active(), window5);
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::permissionRequired(ScreenRecordingPermission::revoked));
    EXPECT_EQ(bench.active(), std::nullopt);
    EXPECT_EQ(bench.engine.currentSource(), std::nullopt) << "its stream runs on";
}

TEST(AppControllerOverlap, WhatIsPickedDuringAStartIsFollowedAndComesBackByItself) {
    ControllerBench bench;
    bench.create();
    bench.gate.hold();
    bench.controller->start();
    bench.settle();
    letThrough(bench, Order::oldestFirst);
    ASSERT_EQ(bench.gate.waiting(), Events{"engine switch display 1"});
    bench.controller->toggleSource(display2, {});
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), (Events{"engine switch display 1", "engine switch display 2"}));
    letThrough(bench, Order::newestFirst);
    ASSERT_EQ(bench.state(), State::running());
    EXPECT_TRUE(bench.scheduler.isScheduled()) << "while the start's own switch is on its way";
    (void)bench.events();
    bench.engine.endStream();
    bench.settle();
    ASSERT_EQ(bench.state(), State::recoveryRequired(CaptureRecoveryReason::streamStopped));
    bench.gate.open();
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display2);
    EXPECT_EQ(std::ranges::count(bench.events(), "refresh every 5"), 1) << "begun once a session";
}

TEST(AppControllerOverlap, ALateStopDoesNotLeaveTheNextSessionWithoutItsStream) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.gate.hold();
    bench.controller->stop();
    bench.controller->stop();
    bench.settle();
    letThrough(bench, Order::oldestFirst);
    ASSERT_EQ(bench.state(), State::stopped());
    bench.controller->start();
    bench.settle();
    letThrough(bench, Order::newestFirst);
    letThrough(bench, Order::newestFirst);
    ASSERT_EQ(bench.state(), State::running());
    ASSERT_EQ(bench.gate.waiting(), Events{"engine stop"});
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.engine.currentSource(), display1);
}

TEST(AppControllerOverlap, ALateStopDoesNotEndTheStoppingOfTheNextSession) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.gate.hold();
    bench.controller->stop();
    bench.controller->stop();
    bench.settle();
    letThrough(bench, Order::newestFirst);
    ASSERT_EQ(bench.state(), State::stopped());
    bench.controller->start();
    bench.settle();
    letThrough(bench, Order::newestFirst);
    letThrough(bench, Order::newestFirst);
    ASSERT_EQ(bench.state(), State::running());
    bench.controller->stop();
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), (Events{"engine stop", "engine stop"}));
    letThrough(bench, Order::oldestFirst);
    EXPECT_EQ(bench.state(), State::stopping()) << "its own stream has not stopped yet";
    letThrough(bench, Order::oldestFirst);
    EXPECT_EQ(bench.state(), State::stopped());
}

TEST(AppControllerOverlap, ALateRecoveryDoesNotBeginTheNextSessionsFollowing) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.engine.failFor(display2, PlatformError("X11", 1));
    bench.gate.hold();
    bench.pointAt(2);
    letThrough(bench, Order::oldestFirst);
    letThrough(bench, Order::oldestFirst);
    ASSERT_EQ(bench.gate.waiting(), Events{"fetch"});
    bench.controller->stop();
    bench.settle();
    letThrough(bench, Order::newestFirst);
    ASSERT_EQ(bench.state(), State::stopped());
    bench.engine.failures.clear();
    bench.controller->start();
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), (Events{"fetch", "engine switch display 2"}));
    letThrough(bench, Order::oldestFirst);
    EXPECT_EQ(bench.state(), State::switching());
    EXPECT_FALSE(bench.scheduler.isScheduled());
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.active(), display2);
    EXPECT_TRUE(bench.scheduler.isScheduled());
}

// A session does not wait for the listing of an earlier one: what was never listed is not there.
TEST(AppControllerOverlap, ASecondStartDuringTheVeryFirstListingFindsNoSource) {
    ControllerBench bench;
    bench.create();
    bench.gate.hold();
    bench.controller->start();
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), Events{"fetch"});
    bench.controller->stop();
    bench.settle();
    letThrough(bench, Order::newestFirst);
    ASSERT_EQ(bench.state(), State::stopped());
    bench.controller->start();
    bench.settle();
    EXPECT_EQ(bench.gate.waiting(), (Events{"fetch", "engine stop"}));
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::recoveryRequired(CaptureRecoveryReason::sourceUnavailable));
    // The listing has come meanwhile: the next start finds it.
    bench.controller->start();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display1);
}

TEST(AppControllerOverlap, ALateStartDoesNotSwitchInTheNextSession) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.controller->stop();
    bench.settle();
    bench.gate.hold();
    bench.controller->start();
    bench.settle();
    bench.controller->stop();
    bench.settle();
    letThrough(bench, Order::newestFirst);
    ASSERT_EQ(bench.state(), State::stopped());
    bench.controller->start();
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), (Events{"fetch", "engine switch display 1"}));
    (void)bench.events();
    bench.gate.open();
    bench.settle();
    const auto calls = bench.events();
    EXPECT_EQ(std::ranges::count(calls, "engine switch display 1"), 0);
    EXPECT_EQ(bench.state(), State::running());
}

// Window numbers come again.
TEST(AppControllerOverlap, ALateRefreshDoesNotGiveUpWhatWasPickedMeanwhile) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.startAndRun();
    bench.gate.hold();
    bench.existence.answers[5] = WindowExistence::terminated;
    bench.scheduler.tick();
    bench.settle();
    letThrough(bench, Order::oldestFirst);
    ASSERT_EQ(bench.gate.waiting(), Events{"engine stop"});
    bench.existence.answers.clear();
    const WindowOwnerIdentity viewer{51, "org.example.viewer"};
    bench.controller->toggleSource(window5, viewer);
    bench.controller->toggleSource(window5, viewer);
    bench.settle();
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.settings->manualSources.get(), std::vector{window5});
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), window5);
    EXPECT_EQ(bench.diagnostics.lines, Events());
}

} // namespace
} // namespace kestrove
