#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Permission = ScreenRecordingPermission;
using Events = std::vector<std::string>;

TEST(AppControllerStart, TakesItsStepsInOrder) {
    ControllerBench bench;
    bench.create().start();
    EXPECT_EQ(bench.events(),
              (Events{"ensure permission", "permission granted", "show window", "state starting"}));
    EXPECT_EQ(bench.engine.excluded, (WindowIDSet{900, 901}));
    bench.settle();
    EXPECT_EQ(
        bench.events(),
        (Events{"fetch", "unavailable", "available",
                // The output is emptied before the stream moves.
                "state switching", "flush", "active none", "hide mark", "engine switch display 1",
                // And shown once the stream has moved.
                "match 1920x1080", "show content", "active display 1", "mark display 1",
                "state running", "watch global pointer", "watch local pointer", "refresh every 5",
                // Tracking announced the display that is shown already.
                "state running"}));
    EXPECT_EQ(bench.container.content, &bench.renderer.view());
}

class WithoutPermission : public testing::TestWithParam<Permission> {};

TEST_P(WithoutPermission, ClearsTheOutputSaysWhyAndAlerts) {
    ControllerBench bench;
    bench.create();
    bench.permission = GetParam();
    bench.controller->start();
    const auto name = nameOf(State::permissionRequired(GetParam()));
    const auto permission = name.substr(name.find('(') + 1, name.size() - name.find('(') - 2);
    EXPECT_EQ(bench.events(),
              (Events{"ensure permission", "permission " + permission, "flush", "active none",
                      "hide mark", "state " + name, "alert " + permission}));
    bench.settle();
    EXPECT_EQ(bench.events(), Events());
    EXPECT_EQ(bench.state(), State::permissionRequired(GetParam()));
    EXPECT_EQ(bench.controller->permissionStatus().get(), GetParam());
    EXPECT_TRUE(bench.controller->recoveryGuidance().has_value());
}

INSTANTIATE_TEST_SUITE_P(, WithoutPermission,
                         testing::Values(Permission::notDetermined, Permission::denied,
                                         Permission::revoked));

TEST(AppControllerStart, IsAcceptedAgainOnceThePermissionIsThere) {
    ControllerBench bench;
    bench.create();
    bench.permission = Permission::denied;
    bench.controller->start();
    bench.permission = Permission::granted;
    bench.startAndRun();
    EXPECT_EQ(bench.state(), State::running());
}

TEST(AppControllerStart, DoesNothingWhileASessionIsOnOrStopping) {
    ControllerBench bench;
    bench.create();
    bench.gate.hold();
    const auto expectIgnored = [&bench](State during) {
        EXPECT_EQ(bench.state(), during);
        (void)bench.events();
        bench.controller->start();
        EXPECT_EQ(bench.events(), Events());
    };
    bench.controller->start();
    expectIgnored(State::starting());
    bench.settle();
    bench.gate.letThrough();
    bench.settle();
    expectIgnored(State::switching());
    bench.gate.open();
    bench.settle();
    expectIgnored(State::running());
    bench.gate.hold();
    bench.controller->stop();
    bench.settle();
    expectIgnored(State::stopping());
}

// Asking may run a dialog, and with it the main loop.
TEST(AppControllerStart, ASecondOneWhileThePermissionIsAskedForBeginsTheOnlySession) {
    ControllerBench bench;
    bench.create();
    bench.whileAsked = [&bench] {
        bench.controller->start();
        bench.settle();
        EXPECT_EQ(bench.state(), State::running());
    };
    bench.controller->start();
    bench.settle();
    EXPECT_EQ(std::ranges::count(bench.events(), "state starting"), 1);
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display1);
}

TEST(AppControllerStart, BeginsWithTheDisplayUnderThePointerInBothAutomaticModes) {
    for (const auto mode : {FollowMode::mouse, FollowMode::focusedApp}) {
        ControllerBench bench;
        bench.create();
        bench.settings->followMode.set(mode);
        bench.pointer.point = {2000, 100};
        bench.gate.hold();
        bench.controller->start();
        bench.settle();
        bench.gate.letThrough();
        bench.settle();
        EXPECT_EQ(bench.gate.waiting(), Events{"engine switch display 2"});
    }
}

TEST(AppControllerStart, FallsBackToTheFirstListedDisplay) {
    ControllerBench bench;
    bench.lister.snapshot = {};
    bench.lister.addDisplay(3);
    bench.lister.addDisplay(5);
    bench.screens.list.clear();
    bench.screens.add({0, 0, 1920, 1080}, 7);
    bench.create();
    bench.startAndRun();
    EXPECT_EQ(bench.active(), CaptureSource::display(3));
    EXPECT_EQ(bench.reasons().front(), "displayIDNotEnumerated");
    const auto& line = bench.log.lines.front();
    EXPECT_EQ(line.subsystem, "dev.kestrove");
    EXPECT_EQ(line.category, "source-resolution");
    EXPECT_EQ(line.level, LogLevel::standard);
    EXPECT_EQ(line.text, "source resolution mode=mouse manualCandidates=0 availableDisplays=2 "
                         "reason=displayIDNotEnumerated");
}

TEST(AppControllerStart, WithoutAPointerDisplayTheFirstListedOneIsShown) {
    ControllerBench bench;
    bench.screens.list.clear();
    bench.create();
    bench.startAndRun();
    EXPECT_EQ(bench.active(), display1);
    EXPECT_EQ(bench.reasons().front(), "displayIDUnavailable");
}

TEST(AppControllerStart, WithoutAnyDisplayItStopsSafely) {
    ControllerBench bench;
    bench.lister.snapshot = {};
    bench.create();
    bench.startAndRun();
    EXPECT_EQ(bench.state(), State::recoveryRequired(CaptureRecoveryReason::sourceUnavailable));
    EXPECT_EQ(bench.reasons(), std::vector<std::string>{"availableDisplayUnavailable"});
    EXPECT_FALSE(bench.scheduler.isScheduled());
}

TEST(AppControllerStart, ManualModeBeginsWithTheOnlyPick) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.startAndRun();
    EXPECT_EQ(bench.active(), window5);
    EXPECT_EQ(bench.state(), State::running());
}

TEST(AppControllerStart, ManualModeBeginsWithTheResolversChoiceAmongSeveral) {
    ControllerBench bench;
    bench.createManual({window5, display1});
    bench.gate.hold();
    bench.controller->start();
    bench.settle();
    bench.gate.letThrough();
    bench.settle();
    // The display under the pointer, although the window was picked first.
    EXPECT_EQ(bench.gate.waiting(), Events{"engine switch display 1"});
}

TEST(AppControllerStart, ManualModeWithoutPicksStopsSafely) {
    ControllerBench bench;
    bench.createManual({});
    bench.startAndRun();
    EXPECT_EQ(bench.state(), State::recoveryRequired(CaptureRecoveryReason::sourceUnavailable));
    EXPECT_EQ(bench.reasons(), std::vector<std::string>{"manualCandidatesUnavailable"});
    EXPECT_EQ(bench.log.lines.back().text, "source resolution mode=manual manualCandidates=0 "
                                           "availableDisplays=2 "
                                           "reason=manualCandidatesUnavailable");
}

TEST(AppControllerStart, NeverBeginsWithASourceThatIsNoLongerPicked) {
    ControllerBench bench;
    bench.createManual({window5, window6});
    ASSERT_EQ(bench.resolver->currentSource().get(), window5);
    bench.settings->followMode.set(FollowMode::mouse);
    bench.settings->manualSources.set({});
    bench.settings->followMode.set(FollowMode::manual);
    bench.startAndRun();
    EXPECT_EQ(bench.state(), State::recoveryRequired(CaptureRecoveryReason::sourceUnavailable));
    EXPECT_EQ(bench.engine.currentSource(), std::nullopt);
}

TEST(AppControllerStart, WatchesPointerAndFocusOnlyForSeveralPicks) {
    ControllerBench one;
    one.createManual({display1});
    one.controller->start();
    one.settle();
    const auto calls = one.events();
    EXPECT_EQ(std::ranges::count(calls, "watch global pointer"), 0);

    ControllerBench two;
    two.createManual({display1, display2});
    two.controller->start();
    two.settle();
    const auto watched = two.events();
    EXPECT_EQ(std::ranges::count(watched, "watch global pointer"), 1);
    EXPECT_EQ(std::ranges::count(watched, "watch activation"), 1);
}

TEST(AppControllerStart, StartsAgainAfterEachWayOfEnding) {
    ControllerBench bench;
    bench.create();
    bench.engine.failFor(display1, PlatformError("X11", 3));
    bench.engine.failFor(display2, PlatformError("X11", 3));
    bench.startAndRun();
    ASSERT_EQ(bench.state(), State::recoveryRequired(CaptureRecoveryReason::switchFailed));
    bench.engine.failures.clear();
    bench.startAndRun();
    EXPECT_EQ(bench.state(), State::running());
    bench.controller->stop();
    bench.settle();
    ASSERT_EQ(bench.state(), State::stopped());
    bench.startAndRun();
    EXPECT_EQ(bench.state(), State::running());
}

} // namespace
} // namespace kestrove
