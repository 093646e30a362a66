#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Events = std::vector<std::string>;

TEST(AppControllerStop, StopsFollowingRefreshingAndTheEngine) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.controller->stop();
    EXPECT_EQ(bench.events(), (Events{"unwatch global pointer", "unwatch local pointer",
                                      "cancel refresh", "state stopping"}));
    bench.settle();
    EXPECT_EQ(bench.events(), (Events{"engine stop", "state stopped"}));
    EXPECT_EQ(bench.engine.currentSource(), std::nullopt);
}

TEST(AppControllerStop, DoesNothingWhenNothingIsOn) {
    ControllerBench bench;
    bench.create();
    const auto expectIgnored = [&bench] {
        const auto before = bench.state();
        (void)bench.events();
        bench.controller->stop();
        bench.settle();
        EXPECT_EQ(bench.events(), Events());
        EXPECT_EQ(bench.state(), before);
    };
    expectIgnored();
    bench.permission = ScreenRecordingPermission::denied;
    bench.controller->start();
    expectIgnored();
    bench.permission = ScreenRecordingPermission::granted;
    bench.lister.snapshot = {};
    bench.startAndRun();
    ASSERT_EQ(bench.state(), State::recoveryRequired(CaptureRecoveryReason::sourceUnavailable));
    expectIgnored();
}

TEST(AppControllerStop, PressedTwiceEndsInStopped) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.gate.hold();
    bench.controller->stop();
    bench.settle();
    bench.controller->stop();
    bench.settle();
    EXPECT_EQ(bench.state(), State::stopping());
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::stopped());
}

TEST(AppControllerStop, PressedWhileASwitchWaitsForTheEngine) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.gate.hold();
    bench.pointAt(2);
    ASSERT_EQ(bench.gate.waiting(), Events{"engine switch display 2"});
    bench.controller->stop();
    EXPECT_EQ(bench.state(), State::stopping());
    (void)bench.events();
    bench.gate.letThrough();
    bench.settle();
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::stopped());
    EXPECT_EQ(bench.engine.currentSource(), std::nullopt);
    // Once for the stop, and once for the switch that came back too late.
    EXPECT_EQ(bench.events(), (Events{"engine stop", "engine stop", "state stopped"}));
    EXPECT_EQ(bench.active(), std::nullopt);
}

TEST(AppControllerStop, FromWaitingForSource) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.startAndRun();
    bench.controller->toggleSource(window5, editor);
    bench.settle();
    ASSERT_EQ(bench.state(), State::waitingForSource());
    bench.controller->stop();
    bench.settle();
    EXPECT_EQ(bench.state(), State::stopped());
}

} // namespace
} // namespace kestrove
