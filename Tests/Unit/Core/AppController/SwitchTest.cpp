#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Events = std::vector<std::string>;

TEST(AppControllerSwitch, ClearsTheOutputBeforeTheStreamMoves) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.pointAt(2);
    EXPECT_EQ(bench.events(),
              (Events{"state switching", "flush", "show placeholder", "active none", "hide mark",
                      "engine switch display 2", "match 1920x1080", "show content",
                      "active display 2", "mark display 2", "state running"}));
    EXPECT_EQ(bench.controller->activeSource().get(), display2);
}

TEST(AppControllerSwitch, ToTheShownSourceOnlySaysRunning) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.tracker->recompute(ActiveDisplayTracker::Announcement::always);
    bench.settle();
    EXPECT_EQ(bench.events(), Events{"state running"});
}

TEST(AppControllerSwitch, ToASourceThatTheEngineHasLostMovesTheStream) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.engine.source.reset();
    bench.tracker->recompute(ActiveDisplayTracker::Announcement::always);
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.engine.currentSource(), display1);
}

TEST(AppControllerSwitch, OfTwoThatOverlapTheLaterIsShown) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.gate.hold();
    bench.pointAt(2);
    bench.pointAt(1);
    ASSERT_EQ(bench.gate.waiting(), (Events{"engine switch display 2", "engine switch display 1"}));
    (void)bench.events();
    bench.gate.letThrough();
    bench.settle();
    // The first is not shown for a moment while the second is on its way.
    EXPECT_EQ(bench.events(), Events());
    EXPECT_EQ(bench.state(), State::switching());
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display1);
    EXPECT_EQ(bench.engine.currentSource(), display1);
}

TEST(AppControllerSwitch, OneThatComesBackAfterALaterOneIsUndone) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.gate.hold();
    bench.pointAt(2);
    bench.pointAt(1);
    bench.gate.letThrough(AwaitGate::Order::newestFirst);
    bench.settle();
    EXPECT_EQ(bench.active(), display1);
    bench.gate.letThrough();
    bench.settle();
    ASSERT_EQ(bench.engine.currentSource(), display2);
    EXPECT_EQ(bench.active(), std::nullopt);
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.active(), display1);
    EXPECT_EQ(bench.engine.currentSource(), display1);
    EXPECT_EQ(bench.state(), State::running());
}

TEST(AppControllerSwitch, ThatFailsWhenALaterOneIsOnItsWayIsOnlyLogged) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.engine.failFor(display2, PlatformError("X11", 9));
    bench.gate.hold();
    bench.pointAt(2);
    bench.pointAt(1);
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display1);
    EXPECT_EQ(bench.log.lines.back().text, "capture switch failed domain=X11 code=9");
    const auto calls = bench.events();
    EXPECT_EQ(std::ranges::count(calls, "engine stop"), 0);
}

TEST(AppControllerSwitch, WaitingEndsTheStreamFirstAndThenClearsTheOutput) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.startAndRun();
    bench.controller->toggleSource(window5, editor);
    bench.settle();
    EXPECT_EQ(bench.events(), (Events{"engine stop", "flush", "show placeholder", "active none",
                                      "hide mark", "state waitingForSource"}));
    EXPECT_TRUE(bench.scheduler.isScheduled());
}

TEST(AppControllerSwitch, ASourceThatComesEndsTheWait) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.startAndRun();
    bench.controller->toggleSource(window5, editor);
    bench.settle();
    bench.controller->toggleSource(display2, std::nullopt);
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display2);
}

TEST(AppControllerSwitch, AWaitOvertakesASwitchThatHasNotComeBack) {
    ControllerBench bench;
    bench.createManual({display1});
    bench.startAndRun();
    bench.gate.hold();
    bench.controller->toggleSource(window5, editor);
    bench.controller->toggleSource(display1, std::nullopt);
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), Events{"engine switch window 5"});
    bench.controller->toggleSource(window5, editor);
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), (Events{"engine switch window 5", "engine stop"}));
    (void)bench.events();
    // The stop comes back first, as it does when there is no stream yet.
    bench.gate.letThrough(AwaitGate::Order::newestFirst);
    bench.settle();
    EXPECT_EQ(bench.state(), State::waitingForSource());
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::waitingForSource());
    EXPECT_EQ(bench.engine.currentSource(), std::nullopt);
    // A window that the user unticked is never shown.
    const auto calls = bench.events();
    EXPECT_EQ(std::ranges::count(calls, "show content"), 0);
}

TEST(AppControllerSwitch, ASwitchOvertakesAWaitThatHasNotComeBack) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.startAndRun();
    bench.gate.hold();
    bench.controller->toggleSource(window5, editor);
    bench.settle();
    bench.controller->toggleSource(display2, std::nullopt);
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), (Events{"engine stop", "engine switch display 2"}));
    for (const auto order : {AwaitGate::Order::newestFirst, AwaitGate::Order::oldestFirst}) {
        bench.gate.letThrough(order);
        bench.settle();
    }
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display2);
    EXPECT_EQ(bench.engine.currentSource(), display2);
}

} // namespace
} // namespace kestrove
