#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Permission = ScreenRecordingPermission;
using Events = std::vector<std::string>;

TEST(AppControllerWiring, AppliesTheSettingsAsTheyAre) {
    ControllerBench bench;
    bench.defaults.values["kestrove.targetFPS"] = std::int64_t(24);
    bench.defaults.values["kestrove.alwaysOnTop"] = true;
    bench.defaults.values["kestrove.hideOutputWindow"] = true;
    bench.create();
    EXPECT_EQ(bench.engine.fps, 24);
    EXPECT_EQ(bench.window.isOnTop, true);
    EXPECT_EQ(bench.window.isHidden, true);
}

TEST(AppControllerWiring, AppliesChangesOfTheSettings) {
    ControllerBench bench;
    bench.create();
    bench.settings->alwaysOnTop.set(true);
    EXPECT_EQ(bench.window.isOnTop, true);
    bench.settings->hideOutputWindow.set(true);
    EXPECT_EQ(bench.window.isHidden, true);
    bench.settings->hideOutputWindow.set(false);
    EXPECT_EQ(bench.window.isHidden, false);
}

TEST(AppControllerWiring, ClampsTheFrameRate) {
    ControllerBench bench;
    bench.create();
    const std::vector<std::pair<std::int64_t, int>> rows = {
        {0, 1}, {-5, 1}, {1, 1}, {60, 60}, {120, 60}, {std::int64_t(1) << 40, 60}};
    for (const auto& [set, applied] : rows) {
        bench.settings->targetFPS.set(set);
        EXPECT_EQ(bench.engine.fps, applied) << set;
    }
}

TEST(AppControllerWiring, IgnoresARepeatedValue) {
    ControllerBench bench;
    bench.create();
    bench.engine.fps = 0;
    bench.settings->targetFPS.set(30);
    EXPECT_EQ(bench.engine.fps, 0);
    bench.window.isHidden.reset();
    bench.settings->hideOutputWindow.set(false);
    EXPECT_EQ(bench.window.isHidden, std::nullopt);
    bench.startAndRun();
    bench.settings->followMode.set(FollowMode::mouse);
    bench.settle();
    EXPECT_EQ(bench.events(), Events());
}

TEST(AppControllerWiring, ShowsAMissingPermissionWithoutWaitingForAStart) {
    ControllerBench bench;
    bench.permission = Permission::notDetermined;
    bench.create();
    EXPECT_EQ(bench.state(), State::permissionRequired(Permission::notDetermined));
    EXPECT_EQ(bench.controller->permissionStatus().get(), Permission::notDetermined);
}

TEST(AppControllerWiring, AnIdleControllerOnlyNotesAPermission) {
    ControllerBench bench;
    bench.create();
    bench.controller->refreshIdlePermissionState();
    EXPECT_EQ(bench.events(), Events{"permission granted"});
    EXPECT_EQ(bench.state(), State::stopped());
}

TEST(AppControllerWiring, ThePermissionIsNotLookedAtDuringOrAfterASession) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.permission = Permission::revoked;
    bench.controller->refreshIdlePermissionState();
    EXPECT_EQ(bench.state(), State::running());
    bench.permission = Permission::granted;
    bench.engine.endStream();
    bench.permission = Permission::revoked;
    bench.controller->refreshIdlePermissionState();
    EXPECT_EQ(bench.state(), State::recoveryRequired(CaptureRecoveryReason::streamStopped));
}

TEST(AppControllerWiring, ModeChangesDoNotActWithoutASession) {
    ControllerBench bench;
    bench.create();
    for (const auto mode : {FollowMode::manual, FollowMode::focusedApp, FollowMode::mouse}) {
        bench.settings->followMode.set(mode);
        bench.settle();
        EXPECT_EQ(bench.events(), Events());
        EXPECT_EQ(bench.tracker->mode(), mode);
    }
}

TEST(AppControllerWiring, AnotherAutomaticModeWatchesSomethingElseAndSwitches) {
    ControllerBench bench;
    WindowDescription editorWindow;
    editorWindow.ownerProcessID = editor.processID;
    editorWindow.bounds = Rect{2100, 100, 500, 500};
    bench.windowServer.lists[17] = {editorWindow};
    bench.workspace.frontmost = RunningApplication{50, "org.example.editor"};
    bench.create();
    bench.startAndRun();
    ASSERT_EQ(bench.active(), display1);
    bench.settings->followMode.set(FollowMode::focusedApp);
    EXPECT_EQ(bench.events(),
              (Events{"unwatch global pointer", "unwatch local pointer", "watch activation"}));
    bench.settle();
    EXPECT_EQ(bench.active(), display2);
    bench.settings->followMode.set(FollowMode::mouse);
    bench.settle();
    EXPECT_EQ(bench.active(), display1);
}

TEST(AppControllerWiring, ManualModeShowsThePicks) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.settings->followMode.set(FollowMode::mouse);
    bench.startAndRun();
    ASSERT_EQ(bench.active(), display1);
    bench.settings->followMode.set(FollowMode::manual);
    bench.settle();
    EXPECT_EQ(bench.active(), window5);
    const auto calls = bench.events();
    EXPECT_EQ(std::ranges::count(calls, "unwatch global pointer"), 1);
}

TEST(AppControllerWiring, ManualModeShowsTheSameChoiceAsBeforeAgain) {
    ControllerBench bench;
    bench.createManual({window5, window6});
    bench.startAndRun();
    ASSERT_EQ(bench.active(), window5);
    bench.settings->followMode.set(FollowMode::mouse);
    bench.settle();
    ASSERT_EQ(bench.active(), display1);
    // The resolver has nothing new to announce, and still its choice is to be shown.
    bench.settings->followMode.set(FollowMode::manual);
    bench.settle();
    EXPECT_EQ(bench.active(), window5);
}

TEST(AppControllerWiring, ManualModeWithoutPicksWaits) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.settings->followMode.set(FollowMode::manual);
    bench.settle();
    EXPECT_EQ(bench.state(), State::waitingForSource());
    bench.settings->followMode.set(FollowMode::mouse);
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display1);
}

TEST(AppControllerWiring, TheRefreshRunsWithTheSession) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    ASSERT_TRUE(bench.scheduler.isScheduled());
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.events(), (Events{"fetch", "unavailable", "available"}));
    bench.controller->stop();
    EXPECT_FALSE(bench.scheduler.isScheduled());
}

TEST(AppControllerWiring, NothingReachesAControllerThatHasGone) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.destroy();
    EXPECT_FALSE(bench.scheduler.isScheduled());
    EXPECT_FALSE(bench.engine.unexpectedStop);
    (void)bench.events();
    bench.settings->targetFPS.set(12);
    bench.settings->followMode.set(FollowMode::manual);
    bench.settings->manualSources.set({display2});
    bench.pointAt(2);
    EXPECT_EQ(bench.events(), Events());
    EXPECT_EQ(bench.engine.fps, 30);
}

} // namespace
} // namespace kestrove
