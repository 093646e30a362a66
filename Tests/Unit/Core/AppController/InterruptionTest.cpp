#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Events = std::vector<std::string>;

const auto streamStopped = State::recoveryRequired(CaptureRecoveryReason::streamStopped);

TEST(AppControllerInterruption, ClearsTheOutputAndKeepsRefreshing) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.engine.endStream();
    EXPECT_EQ(bench.events(),
              (Events{"unwatch global pointer", "unwatch local pointer", "flush",
                      "show placeholder", "active none", "hide mark", "permission granted",
                      "state recoveryRequired(streamStopped)"}));
    EXPECT_TRUE(bench.scheduler.isScheduled());
    bench.settle();
    // The stream is dead already: the engine is not stopped again.
    EXPECT_EQ(bench.events(), Events());
}

TEST(AppControllerInterruption, SaysWhenThePermissionIsGone) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.permission = ScreenRecordingPermission::revoked;
    bench.engine.endStream();
    EXPECT_EQ(bench.state(), State::permissionRequired(ScreenRecordingPermission::revoked));
    EXPECT_EQ(bench.controller->permissionStatus().get(), ScreenRecordingPermission::revoked);
}

TEST(AppControllerInterruption, IsIgnoredWithoutASession) {
    ControllerBench bench;
    bench.create();
    bench.engine.source = display1;
    bench.engine.unexpectedStop();
    EXPECT_EQ(bench.events(), Events());
    EXPECT_EQ(bench.state(), State::stopped());
    bench.startAndRun();
    bench.gate.hold();
    bench.controller->stop();
    bench.engine.endStream();
    EXPECT_EQ(bench.state(), State::stopping());
}

TEST(AppControllerInterruption, IsIgnoredWhenNothingIsShown) {
    ControllerBench bench;
    bench.create();
    bench.gate.hold();
    bench.controller->start();
    bench.settle();
    bench.engine.endStream();
    EXPECT_EQ(bench.state(), State::starting());
}

TEST(AppControllerInterruption, OfTheEnginesOwnSourceCountsWhileSwitching) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.gate.hold();
    bench.pointAt(2);
    ASSERT_EQ(bench.active(), std::nullopt);
    ASSERT_EQ(bench.engine.currentSource(), display1);
    bench.engine.unexpectedStop();
    EXPECT_EQ(bench.state(), streamStopped);
    bench.gate.open();
    bench.settle();
    // The switch came back to an ended session.
    EXPECT_EQ(bench.state(), streamStopped);
    EXPECT_EQ(bench.engine.currentSource(), std::nullopt);
    EXPECT_EQ(bench.container.content, nullptr);
}

TEST(AppControllerInterruption, APickedSourceIsResumedWhenItIsSeenAgain) {
    ControllerBench bench;
    bench.createManual({window5, window6});
    bench.startAndRun();
    ASSERT_EQ(bench.active(), window5);
    bench.lister.snapshot.onScreenSources.erase(window5);
    bench.engine.endStream();
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.state(), streamStopped);

    bench.lister.snapshot.onScreenSources.insert(window5);
    (void)bench.events();
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), window5);
    const auto calls = bench.events();
    EXPECT_EQ(std::ranges::count(calls, "state starting"), 1);
    EXPECT_EQ(std::ranges::count(calls, "refresh every 5"), 1);
    EXPECT_EQ(std::ranges::count(calls, "watch global pointer"), 1);
    // Once resumed, it is not waited for any more.
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
}

TEST(AppControllerInterruption, ADisplayThatNobodyPickedIsNotResumed) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.engine.endStream();
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.state(), streamStopped);
}

Task<void> askToResume(AppController& controller, CaptureSource source,
                       std::optional<bool>* answer) {
    *answer = co_await controller.resumeInterruptedSource(source);
}

TEST(AppControllerInterruption, ResumesOnlyAfterAStreamStop) {
    ControllerBench bench;
    bench.createManual({window5});
    TaskScope scope(bench.loop);
    const auto resumes = [&bench, &scope] {
        std::optional<bool> answer;
        scope.launch(askToResume(*bench.controller, window5, &answer));
        bench.settle();
        return answer;
    };
    EXPECT_EQ(resumes(), false);
    bench.startAndRun();
    EXPECT_EQ(resumes(), false);
    bench.engine.endStream();
    EXPECT_EQ(resumes(), true);
    EXPECT_EQ(bench.state(), State::running());
}

TEST(AppControllerInterruption, AFailedResumeStopsWithoutAFallback) {
    ControllerBench bench;
    bench.createManual({window5, window6});
    bench.startAndRun();
    bench.engine.endStream();
    bench.engine.failFor(window5, EngineError::windowNotFound);
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.state(), State::recoveryRequired(CaptureRecoveryReason::switchFailed));
    EXPECT_FALSE(bench.scheduler.isScheduled());
    const auto calls = bench.events();
    EXPECT_EQ(std::ranges::count(calls, "engine switch window 6"), 0);
}

TEST(AppControllerInterruption, UntickingTheSourceEndsTheWaitForIt) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.startAndRun();
    bench.engine.endStream();
    ASSERT_TRUE(bench.scheduler.isScheduled());
    bench.controller->toggleSource(window5, editor);
    EXPECT_FALSE(bench.scheduler.isScheduled());
}

TEST(AppControllerInterruption, AStartByHandEndsTheWaitForIt) {
    ControllerBench bench;
    bench.createManual({window5, window6});
    bench.startAndRun();
    bench.engine.endStream();
    bench.settings->manualSources.set({window5, display2});
    bench.startAndRun();
    ASSERT_EQ(bench.state(), State::running());
    // What was interrupted goes away: the session that runs goes on refreshing.
    bench.controller->toggleSource(window5, editor);
    bench.settle();
    EXPECT_EQ(bench.active(), display2);
    EXPECT_TRUE(bench.scheduler.isScheduled());
}

TEST(AppControllerInterruption, ATerminatedActiveSourceMakesTheSessionWait) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.startAndRun();
    bench.existence.answers[5] = WindowExistence::terminated;
    bench.lister.remove(window5);
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.state(), State::waitingForSource());
    EXPECT_EQ(bench.container.content, nullptr);
    EXPECT_EQ(bench.engine.currentSource(), std::nullopt);
    EXPECT_EQ(bench.settings->manualSources.get(), std::vector<CaptureSource>());
}

TEST(AppControllerInterruption, AClosedWindowGivesWayToAnotherPickedSource) {
    ControllerBench bench;
    bench.createManual({window5, window6});
    bench.startAndRun();
    ASSERT_EQ(bench.active(), window5);
    bench.existence.answers[5] = WindowExistence::terminated;
    bench.lister.remove(window5);
    bench.engine.endStream();
    EXPECT_EQ(bench.container.content, nullptr) << "nothing of it is shown any longer";
    EXPECT_EQ(bench.active(), std::nullopt);
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), window6);
    EXPECT_EQ(bench.settings->manualSources.get(), std::vector{window6});
    EXPECT_EQ(bench.diagnostics.lines, Events{"[kestrove] pruned 1 terminated manual source(s)"});
    EXPECT_TRUE(bench.scheduler.isScheduled());
}

TEST(AppControllerInterruption, TheLastPickedWindowThatIsClosedMakesTheSessionWait) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.startAndRun();
    bench.existence.answers[5] = WindowExistence::terminated;
    bench.lister.remove(window5);
    bench.engine.endStream();
    bench.settle();
    EXPECT_EQ(bench.state(), State::waitingForSource());
    EXPECT_EQ(bench.container.content, nullptr);
    EXPECT_TRUE(bench.scheduler.isScheduled());
    // What is picked next is shown.
    bench.controller->toggleSource(window6, editor);
    bench.settle();
    EXPECT_EQ(bench.active(), window6);
}

TEST(AppControllerInterruption, AWindowThatNobodyCanJudgeIsWaitedFor) {
    for (const auto answer : {WindowExistence::temporarilyUnavailable, WindowExistence::unknown,
                              WindowExistence::exists}) {
        ControllerBench bench;
        bench.createManual({window5, window6});
        bench.startAndRun();
        bench.existence.answers[5] = answer;
        bench.engine.endStream();
        bench.settle();
        EXPECT_EQ(bench.state(), streamStopped);
        EXPECT_EQ(bench.settings->manualSources.get(), (std::vector{window5, window6}));
    }
}

TEST(AppControllerInterruption, AClosedWindowDoesNotEndASwitchToAnother) {
    ControllerBench bench;
    bench.createManual({window5, window6});
    bench.startAndRun();
    bench.gate.hold();
    bench.settings->manualSources.set({window6, window5});
    bench.controller->applyManualSources({window6});
    bench.settle();
    ASSERT_EQ(bench.state(), State::switching());
    bench.existence.answers[5] = WindowExistence::terminated;
    bench.lister.remove(window5);
    ASSERT_EQ(bench.engine.currentSource(), window5);
    bench.engine.unexpectedStop();
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), window6);
}

TEST(AppControllerInterruption, ATerminatedSourceThatIsNotShownChangesNothing) {
    ControllerBench bench;
    bench.createManual({window5, window6});
    bench.startAndRun();
    bench.existence.answers[6] = WindowExistence::terminated;
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), window5);
}

} // namespace
} // namespace kestrove
