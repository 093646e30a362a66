#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <functional>
#include <gtest/gtest.h>

// Each row of the session's state table, from every state that can be reached in which it applies.

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Permission = ScreenRecordingPermission;
using Reason = CaptureRecoveryReason;
using Names = std::vector<std::string>;

const PlatformError refused("X11", 11);

/// The states published since the last look.
Names states(ControllerBench& bench) {
    Names names;
    for (const auto& call : bench.events()) {
        if (call.starts_with("state "))
            names.push_back(call.substr(6));
    }
    return names;
}

// Ways into each state. `bench.gate` is held in those that are on their way somewhere.

void intoStopped(ControllerBench& bench) {
    bench.create();
}
void intoRunning(ControllerBench& bench) {
    bench.create();
    bench.startAndRun();
}
void intoStarting(ControllerBench& bench) {
    bench.create();
    bench.gate.hold();
    bench.controller->start();
    bench.settle();
    ASSERT_EQ(bench.state(), State::starting());
}
void intoSwitching(ControllerBench& bench) {
    intoRunning(bench);
    bench.gate.hold();
    bench.pointAt(2);
    ASSERT_EQ(bench.state(), State::switching());
}
void intoWaiting(ControllerBench& bench) {
    intoRunning(bench);
    bench.settings->followMode.set(FollowMode::manual);
    bench.settle();
    ASSERT_EQ(bench.state(), State::waitingForSource());
}
void intoStopping(ControllerBench& bench) {
    intoRunning(bench);
    bench.gate.hold();
    bench.controller->stop();
    bench.settle();
    ASSERT_EQ(bench.state(), State::stopping());
}
void intoPermissionRequired(ControllerBench& bench, Permission permission) {
    bench.create();
    bench.permission = permission;
    bench.controller->start();
    ASSERT_EQ(bench.state(), State::permissionRequired(permission));
}
void intoSourceUnavailable(ControllerBench& bench) {
    bench.create();
    const auto snapshot = std::exchange(bench.lister.snapshot, {});
    bench.startAndRun();
    bench.lister.snapshot = snapshot;
    ASSERT_EQ(bench.state(), State::recoveryRequired(Reason::sourceUnavailable));
}
void intoSwitchFailed(ControllerBench& bench) {
    bench.create();
    bench.engine.failFor(display1, refused);
    bench.engine.failFor(display2, refused);
    bench.startAndRun();
    bench.engine.failures.clear();
    ASSERT_EQ(bench.state(), State::recoveryRequired(Reason::switchFailed));
}
void intoStreamStopped(ControllerBench& bench) {
    bench.createManual({window5});
    bench.startAndRun();
    bench.engine.endStream();
    ASSERT_EQ(bench.state(), State::recoveryRequired(Reason::streamStopped));
}

using Into = std::function<void(ControllerBench&)>;

std::vector<Into> intoIdleStates() {
    std::vector<Into> into{intoStopped, intoSourceUnavailable, intoSwitchFailed, intoStreamStopped};
    for (const auto permission :
         {Permission::notDetermined, Permission::denied, Permission::revoked})
        into.emplace_back(
            [permission](ControllerBench& bench) { intoPermissionRequired(bench, permission); });
    return into;
}

const std::vector<Into> intoActiveStates{intoStarting, intoRunning, intoSwitching, intoWaiting};

TEST(SessionStateTable, StartWithoutThePermission) {
    for (const auto& into : intoIdleStates()) {
        for (const auto permission :
             {Permission::notDetermined, Permission::denied, Permission::revoked}) {
            ControllerBench bench;
            into(bench);
            bench.permission = permission;
            bench.controller->start();
            EXPECT_EQ(bench.state(), State::permissionRequired(permission));
        }
    }
}

TEST(SessionStateTable, StartWithThePermission) {
    for (const auto& into : intoIdleStates()) {
        ControllerBench bench;
        into(bench);
        bench.permission = Permission::granted;
        bench.controller->start();
        EXPECT_EQ(bench.state(), State::starting());
        bench.settle();
        EXPECT_EQ(bench.state(), State::running());
    }
}

TEST(SessionStateTable, StartingWithoutAnInitialSource) {
    ControllerBench bench;
    intoStarting(bench);
    bench.lister.snapshot = {};
    (void)bench.events();
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(states(bench), Names{"recoveryRequired(sourceUnavailable)"});
}

TEST(SessionStateTable, ASwitchBegins) {
    ControllerBench starting;
    intoStarting(starting);
    (void)starting.events();
    starting.gate.letThrough();
    starting.settle();
    EXPECT_EQ(states(starting), Names{"switching"});

    ControllerBench running;
    intoRunning(running);
    running.gate.hold();
    running.pointAt(2);
    EXPECT_EQ(states(running), Names{"switching"});

    ControllerBench waiting;
    intoWaiting(waiting);
    waiting.gate.hold();
    (void)waiting.events();
    waiting.settings->manualSources.set({window5});
    waiting.settle();
    EXPECT_EQ(states(waiting), Names{"switching"});
}

TEST(SessionStateTable, ASwitchToTheSourceThatIsShown) {
    ControllerBench starting;
    intoRunning(starting);
    starting.controller->stop();
    starting.settle();
    // The output still shows it, and the engine says that it streams it.
    starting.engine.source = display1;
    (void)starting.events();
    starting.controller->start();
    starting.settle();
    EXPECT_EQ(states(starting), (Names{"starting", "running", "running"}));

    ControllerBench running;
    intoRunning(running);
    running.tracker->recompute(ActiveDisplayTracker::Announcement::always);
    running.settle();
    EXPECT_EQ(states(running), Names{"running"});
}

TEST(SessionStateTable, ASwitchSucceeds) {
    ControllerBench bench;
    intoSwitching(bench);
    (void)bench.events();
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(states(bench), Names{"running"});
}

TEST(SessionStateTable, ASwitchFailsAndAFallbackIsFound) {
    ControllerBench succeeds;
    intoSwitching(succeeds);
    succeeds.engine.failFor(display2, refused);
    (void)succeeds.events();
    succeeds.gate.open();
    succeeds.settle();
    EXPECT_EQ(states(succeeds), (Names{"switching", "running"}));

    ControllerBench fails;
    intoSwitching(fails);
    fails.engine.failFor(display1, EngineError::displayNotFound);
    fails.engine.failFor(display2, EngineError::displayNotFound);
    (void)fails.events();
    fails.gate.open();
    fails.settle();
    EXPECT_EQ(states(fails), (Names{"switching", "recoveryRequired(switchFailed)"}));
}

TEST(SessionStateTable, ASwitchFailsAndThereIsNoFallback) {
    const std::vector<std::pair<CaptureError, Names>> rows = {
        {EngineError::displayNotFound, {"recoveryRequired(sourceUnavailable)"}},
        {EngineError::streamCreationFailed, {"recoveryRequired(switchFailed)"}}};
    for (const auto& [error, expected] : rows) {
        ControllerBench bench;
        intoSwitching(bench);
        bench.engine.failFor(display2, error);
        bench.lister.remove(display1);
        (void)bench.events();
        bench.gate.open();
        bench.settle();
        EXPECT_EQ(states(bench), expected);
    }
}

TEST(SessionStateTable, ASwitchFailsAndThePermissionIsGone) {
    for (const auto& into : {Into(intoStarting), Into(intoRunning), Into(intoSwitching)}) {
        ControllerBench bench;
        into(bench);
        bench.engine.failFor(display1, refused);
        bench.engine.failFor(display2, refused);
        bench.permission = Permission::revoked;
        bench.gate.open();
        bench.pointAt(2);
        EXPECT_EQ(bench.state(), State::permissionRequired(Permission::revoked));
    }
    ControllerBench waiting;
    intoWaiting(waiting);
    waiting.engine.failFor(window5, refused);
    waiting.permission = Permission::revoked;
    waiting.settings->manualSources.set({window5});
    waiting.settle();
    EXPECT_EQ(waiting.state(), State::permissionRequired(Permission::revoked));
}

TEST(SessionStateTable, TheActiveSourceIsTerminated) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.startAndRun();
    bench.existence.answers[5] = WindowExistence::terminated;
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.state(), State::waitingForSource());
}

TEST(SessionStateTable, ThereIsNoCandidate) {
    for (const auto& into : {Into(intoRunning), Into(intoSwitching), Into(intoWaiting)}) {
        ControllerBench bench;
        into(bench);
        bench.settings->followMode.set(FollowMode::manual);
        bench.gate.open();
        bench.settle();
        EXPECT_EQ(bench.state(), State::waitingForSource());
    }
}

TEST(SessionStateTable, TheStreamStops) {
    for (const auto& into : intoActiveStates) {
        for (const auto permission : {Permission::granted, Permission::revoked}) {
            ControllerBench bench;
            into(bench);
            // In the states in which nothing is shown, the engine's own source counts.
            bench.engine.source = display1;
            bench.permission = permission;
            bench.engine.unexpectedStop();
            EXPECT_EQ(bench.state(), permission == Permission::granted
                                         ? State::recoveryRequired(Reason::streamStopped)
                                         : State::permissionRequired(permission));
        }
    }
}

TEST(SessionStateTable, AnInterruptedSourceIsResumed) {
    ControllerBench succeeds;
    intoStreamStopped(succeeds);
    (void)succeeds.events();
    succeeds.scheduler.tick();
    succeeds.settle();
    EXPECT_EQ(states(succeeds), (Names{"starting", "switching", "running", "running"}));

    ControllerBench fails;
    intoStreamStopped(fails);
    fails.engine.failFor(window5, refused);
    (void)fails.events();
    fails.scheduler.tick();
    fails.settle();
    EXPECT_EQ(states(fails), (Names{"starting", "switching", "recoveryRequired(switchFailed)"}));
}

TEST(SessionStateTable, Stop) {
    auto rows = intoActiveStates;
    rows.emplace_back(intoStopping);
    for (const auto& into : rows) {
        ControllerBench bench;
        into(bench);
        bench.gate.hold();
        bench.controller->stop();
        bench.settle();
        EXPECT_EQ(bench.state(), State::stopping());
        bench.gate.open();
        bench.settle();
        EXPECT_EQ(bench.state(), State::stopped());
        EXPECT_EQ(bench.engine.currentSource(), std::nullopt);
    }
}

} // namespace
} // namespace kestrove
