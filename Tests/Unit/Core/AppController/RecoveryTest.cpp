#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Reason = CaptureRecoveryReason;
using Events = std::vector<std::string>;

const PlatformError refused("X11", 11);

TEST(AppControllerRecovery, TriesOneFallbackAndFollowsOn) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.engine.failFor(display2, EngineError::displayNotFound);
    bench.lister.remove(display2);
    bench.pointAt(2);
    EXPECT_EQ(
        bench.events(),
        (Events{"state switching", "flush", "show placeholder", "active none", "hide mark",
                "engine switch display 2",
                // The recovery: nothing follows, nothing refreshes, and nothing is shown.
                "unwatch global pointer", "unwatch local pointer", "cancel refresh", "engine stop",
                "flush", "active none", "hide mark", "fetch", "unavailable", "available",
                // The fallback.
                "state switching", "flush", "active none", "hide mark", "engine switch display 1",
                "match 1920x1080", "show content", "active display 1", "mark display 1",
                "state running", "watch global pointer", "watch local pointer", "refresh every 5",
                "state running"}));
    EXPECT_EQ(bench.log.lines.front(),
              (RecordingLog::Line{"dev.kestrove", "source-resolution", LogLevel::error,
                                  "capture switch failed domain=kestrove.EngineError code=0"}));
}

TEST(AppControllerRecovery, ADisplayThatFailsButStaysListedIsNotTriedWithoutEnd) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.engine.failFor(display2, refused);
    bench.pointAt(2);
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display1);
    (void)bench.events();
    for (int movement = 0; movement < 3; ++movement)
        bench.pointAt(2);
    EXPECT_EQ(std::ranges::count(bench.events(), "engine switch display 2"), 1);
    EXPECT_EQ(bench.active(), display1);
    // When the pointer comes back to it, it is tried again.
    bench.pointAt(1);
    bench.engine.failures.clear();
    bench.pointAt(2);
    EXPECT_EQ(bench.active(), display2);
}

TEST(AppControllerRecovery, ADisplayThatFailedOnceIsShownWhenTheUserGoesOnThere) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    for (int time = 0; time < 2; ++time) {
        bench.engine.failFor(display2, refused);
        bench.pointAt(2);
        ASSERT_EQ(bench.active(), display1);
        bench.engine.failures.clear();
        bench.pointAt(2);
        EXPECT_EQ(bench.active(), display2);
        bench.pointAt(1);
    }
}

TEST(AppControllerRecovery, ADisplayThatFailedTwiceIsTriedOnceForEachRefresh) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.engine.failFor(display2, refused);
    bench.pointAt(2);
    bench.pointAt(2);
    for (int refresh = 0; refresh < 2; ++refresh) {
        (void)bench.events();
        bench.scheduler.tick();
        bench.settle();
        EXPECT_EQ(bench.active(), display1) << "without a movement";
        for (int movement = 0; movement < 3; ++movement)
            bench.pointAt(2);
        EXPECT_EQ(std::ranges::count(bench.events(), "engine switch display 2"), 1);
        ASSERT_EQ(bench.active(), display1);
    }
    bench.engine.failures.clear();
    bench.scheduler.tick();
    bench.pointAt(2);
    EXPECT_EQ(bench.active(), display2);
}

TEST(AppControllerRecovery, OfTheFirstSwitchFollowsOnOnce) {
    ControllerBench bench;
    bench.engine.failFor(display1, refused);
    bench.create();
    bench.controller->start();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display2);
    const auto calls = bench.events();
    EXPECT_EQ(std::ranges::count(calls, "refresh every 5"), 1);
    EXPECT_EQ(std::ranges::count(calls, "engine switch display 1"), 1);
}

TEST(AppControllerRecovery, AFailedFallbackStopsWhateverTheError) {
    for (const CaptureError& error :
         {CaptureError(EngineError::displayNotFound), CaptureError(EngineError::windowNotFound),
          CaptureError(EngineError::streamCreationFailed), CaptureError(refused)}) {
        ControllerBench bench;
        bench.create();
        bench.startAndRun();
        bench.engine.failFor(display1, error);
        bench.engine.failFor(display2, error);
        bench.pointAt(2);
        EXPECT_EQ(bench.state(), State::recoveryRequired(Reason::switchFailed));
        EXPECT_EQ(bench.container.content, nullptr);
        EXPECT_EQ(bench.engine.currentSource(), std::nullopt);
        EXPECT_FALSE(bench.scheduler.isScheduled());
    }
}

TEST(AppControllerRecovery, WithoutAFallbackTheErrorGivesTheReason) {
    const std::vector<std::pair<CaptureError, Reason>> rows = {
        {EngineError::displayNotFound, Reason::sourceUnavailable},
        {EngineError::windowNotFound, Reason::sourceUnavailable},
        {EngineError::streamCreationFailed, Reason::switchFailed},
        {refused, Reason::switchFailed},
    };
    for (const auto& [error, reason] : rows) {
        ControllerBench bench;
        bench.lister.remove(display2);
        bench.engine.failFor(display1, error);
        bench.create();
        bench.startAndRun();
        EXPECT_EQ(bench.state(), State::recoveryRequired(reason));
    }
}

TEST(AppControllerRecovery, StopsAgainstTheOrderOfTheStates) {
    ControllerBench bench;
    bench.lister.remove(display2);
    bench.engine.failFor(display1, refused);
    bench.create();
    bench.controller->start();
    bench.settle();
    const auto calls = bench.events();
    const Events end(calls.end() - 6, calls.end());
    EXPECT_EQ(end, (Events{"cancel refresh", "flush", "active none", "hide mark", "engine stop",
                           "state recoveryRequired(switchFailed)"}));
}

TEST(AppControllerRecovery, InManualModeThePicksAreTheCandidatesInTheirOrder) {
    ControllerBench bench;
    bench.createManual({window5, window6, display2});
    bench.startAndRun();
    ASSERT_EQ(bench.active(), window5);
    // Gone from the lists, and not yet known to be closed.
    bench.lister.remove(window6);
    bench.engine.failFor(window5, EngineError::windowNotFound);
    bench.engine.source.reset();
    bench.controller->applyManualSources(bench.settings->manualSources.get());
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    // A pick stays listed while the enumeration misses it, so window 6 is still a candidate.
    EXPECT_EQ(bench.active(), window6);
}

TEST(AppControllerRecovery, InManualModeOnlyListedPicksAreCandidates) {
    ControllerBench bench;
    bench.lister.remove(window6);
    bench.createManual({window5, window6, display2});
    bench.startAndRun();
    bench.engine.failFor(window5, EngineError::windowNotFound);
    bench.engine.source.reset();
    bench.controller->applyManualSources(bench.settings->manualSources.get());
    bench.settle();
    EXPECT_EQ(bench.active(), display2);
}

TEST(AppControllerRecovery, WithdrawnPermissionEndsTheSession) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.engine.failFor(display2, refused);
    bench.permission = ScreenRecordingPermission::revoked;
    bench.pointAt(2);
    const auto calls = bench.events();
    EXPECT_EQ(bench.state(), State::permissionRequired(ScreenRecordingPermission::revoked));
    EXPECT_EQ(bench.state().statusMessage(), "画面収録の許可が取り消されました");
    const Events end(calls.end() - 3, calls.end());
    // The status follows the state.
    EXPECT_EQ(end,
              (Events{"engine stop", "state permissionRequired(revoked)", "permission revoked"}));
    EXPECT_EQ(std::ranges::count(calls, "fetch"), 0);
    // The session is over, and so is the recovery: a new start follows as ever.
    bench.engine.failures.clear();
    bench.permission = ScreenRecordingPermission::granted;
    bench.startAndRun();
    bench.pointAt(1);
    EXPECT_EQ(bench.active(), display1);
}

TEST(AppControllerRecovery, FollowEventsDoNotSwitchWhileItRuns) {
    ControllerBench bench;
    bench.createManual({window5, window6});
    bench.startAndRun();
    bench.engine.failFor(window6, refused);
    bench.gate.hold();
    bench.settings->manualSources.set({window6});
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), Events{"engine switch window 6"});
    bench.gate.letThrough();
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), Events{"engine stop"});
    (void)bench.events();
    bench.controller->toggleSource(display2, std::nullopt);
    bench.settings->followMode.set(FollowMode::mouse);
    bench.settle();
    const auto calls = bench.events();
    EXPECT_EQ(std::ranges::count_if(calls,
                                    [](const auto& call) { return call.starts_with("engine sw"); }),
              0);
    bench.gate.open();
    bench.settle();
    // The recovery has chosen by what was wished last.
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display1);
}

TEST(AppControllerRecovery, APickMadeDuringTheFallbackIsShownAfterIt) {
    ControllerBench bench;
    bench.createManual({window5, window6});
    bench.startAndRun();
    bench.engine.failFor(window5, refused);
    bench.engine.source.reset();
    bench.gate.hold();
    bench.controller->applyManualSources(bench.settings->manualSources.get());
    for (int awaits = 0; awaits < 3; ++awaits) {
        bench.settle();
        bench.gate.letThrough();
    }
    bench.settle();
    ASSERT_EQ(bench.gate.waiting(), Events{"engine switch window 6"});
    bench.settings->manualSources.set({display2});
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display2);
}

TEST(AppControllerRecovery, AFailedRefreshOnTheWayKeepsTheListsButOffersNoDisplay) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.engine.failFor(display2, refused);
    bench.lister.failure = PlatformError("X11", 5);
    bench.pointAt(2);
    EXPECT_EQ(bench.state(), State::recoveryRequired(Reason::switchFailed));
    EXPECT_EQ(bench.controller->availableSources().get().displays.size(), 2U);
}

} // namespace
} // namespace kestrove
