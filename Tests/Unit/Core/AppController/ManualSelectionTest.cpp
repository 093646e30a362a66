#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Sources = std::vector<CaptureSource>;
using Events = std::vector<std::string>;

TEST(AppControllerToggle, AddsAndRemovesInManualMode) {
    ControllerBench bench;
    bench.createManual({display1});
    bench.controller->toggleSource(window5, editor);
    EXPECT_EQ(bench.settings->manualSources.get(), (Sources{display1, window5}));
    EXPECT_EQ(bench.settings->manualWindowSelections().at(5), (ManualWindowSelection{5, editor}));
    bench.controller->toggleSource(window5, std::nullopt);
    EXPECT_EQ(bench.settings->manualSources.get(), Sources{display1});
    EXPECT_TRUE(bench.settings->manualWindowSelections().empty());
}

TEST(AppControllerToggle, AWindowWithoutAnOwnerCannotBePicked) {
    ControllerBench bench;
    bench.create();
    bench.controller->toggleSource(window5, std::nullopt);
    EXPECT_EQ(bench.settings->manualSources.get(), Sources());
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::mouse);
}

TEST(AppControllerToggle, WhileFollowingItBeginsASelectionOfThisSourceAlone) {
    ControllerBench bench;
    bench.createManual({window5, display2});
    bench.settings->followMode.set(FollowMode::focusedApp);
    bench.controller->toggleSource(window6, editor);
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::manual);
    EXPECT_EQ(bench.settings->manualSources.get(), Sources{window6});
    EXPECT_EQ(bench.settings->manualWindowSelections(), (ManualWindowSelections{{6, {6, editor}}}));
    EXPECT_EQ(bench.defaults.dataText("kestrove.manualSources"), R"([{"window":{"_0":6}}])");
}

TEST(AppControllerToggle, WhileFollowingAnEarlierPickIsPickedAgainWithItsOwner) {
    ControllerBench bench;
    bench.createManual({window5, display2});
    bench.settings->followMode.set(FollowMode::mouse);
    bench.controller->toggleSource(window5, std::nullopt);
    EXPECT_EQ(bench.settings->manualSources.get(), Sources{window5});
    EXPECT_EQ(bench.settings->manualWindowSelections().at(5).owner, editor);
}

TEST(AppControllerToggle, WhileFollowingAnEarlierSelectionIsNotShownForAMoment) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.settings->followMode.set(FollowMode::mouse);
    bench.startAndRun();
    bench.controller->toggleSource(display2, std::nullopt);
    bench.settle();
    EXPECT_EQ(bench.active(), display2);
    const auto calls = bench.events();
    EXPECT_EQ(std::ranges::count(calls, "engine switch window 5"), 0);
    EXPECT_EQ(std::ranges::count(calls, "engine switch display 2"), 1);
}

TEST(AppControllerManualSources, OneIsShownWithoutWatching) {
    ControllerBench bench;
    bench.createManual({display1, display2});
    bench.startAndRun();
    bench.settings->manualSources.set({display2});
    bench.settle();
    EXPECT_EQ(bench.active(), display2);
    const auto calls = bench.events();
    EXPECT_EQ(std::ranges::count(calls, "unwatch global pointer"), 1);
    EXPECT_EQ(std::ranges::count(calls, "engine switch display 2"), 1);
}

TEST(AppControllerManualSources, OfSeveralTheResolverNamesTheOneToShow) {
    ControllerBench bench;
    bench.createManual({display2});
    bench.startAndRun();
    bench.settings->manualSources.set({display2, display1});
    bench.settle();
    EXPECT_EQ(bench.active(), display1);
    bench.pointAt(2);
    EXPECT_EQ(bench.active(), display2);
}

TEST(AppControllerManualSources, WithoutAnyTheSessionWaits) {
    ControllerBench bench;
    bench.createManual({display2});
    bench.startAndRun();
    bench.settings->manualSources.set({});
    bench.settle();
    EXPECT_EQ(bench.state(), State::waitingForSource());
    EXPECT_EQ(bench.active(), std::nullopt);
}

TEST(AppControllerManualSources, ChangeNothingShownInAnAutomaticMode) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.settings->manualSources.set({display2});
    bench.settle();
    EXPECT_EQ(bench.active(), display1);
    EXPECT_EQ(bench.events(), Events());
}

TEST(AppControllerManualSources, OnlyTellTheResolverWithoutASession) {
    ControllerBench bench;
    bench.createManual({display1, display2});
    bench.settings->manualSources.set({display2});
    bench.settle();
    EXPECT_EQ(bench.resolver->currentSource().get(), display2);
    EXPECT_EQ(bench.state(), State::stopped());
    EXPECT_EQ(bench.events(), Events());
}

class AfterARestart : public testing::Test {
protected:
    void storeManual(std::string_view sources) {
        bench.defaults.values["kestrove.followMode"] = std::string("manual");
        bench.defaults.putData("kestrove.manualSources", sources);
        bench.defaults.putData(
            "kestrove.manualWindowSelections",
            R"([{"windowID":5,"owner":{"processID":50,"bundleIdentifier":"org.example"}}])");
    }
    ControllerBench bench;
};

TEST_F(AfterARestart, ManualModeWithOnlyWindowsBecomesMouse) {
    storeManual(R"([{"window":{"_0":5}}])");
    bench.create();
    EXPECT_EQ(bench.settings->manualSources.get(), Sources());
    EXPECT_EQ(bench.defaults.dataText("kestrove.manualSources"), "[]");
    EXPECT_EQ(bench.defaults.dataText("kestrove.manualWindowSelections"), "[]");
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::manual);
    bench.startAndRun();
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::mouse);
    EXPECT_EQ(bench.reasons(), std::vector<std::string>{"discardedManualWindows"});
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.active(), display1);
}

TEST_F(AfterARestart, WithoutADisplayItTriesAgainAtTheNextStart) {
    storeManual(R"([{"window":{"_0":5}}])");
    const auto snapshot = bench.lister.snapshot;
    bench.lister.snapshot = {};
    bench.create();
    bench.startAndRun();
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::manual);
    EXPECT_EQ(bench.reasons().front(), "discardedManualWindowsNoDisplay");
    EXPECT_EQ(bench.state(), State::recoveryRequired(CaptureRecoveryReason::sourceUnavailable));
    bench.lister.snapshot = snapshot;
    bench.startAndRun();
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::mouse);
    EXPECT_EQ(bench.state(), State::running());
}

TEST_F(AfterARestart, PickedDisplaysSurvive) {
    storeManual(R"([{"window":{"_0":5}},{"display":{"_0":2}}])");
    bench.create();
    bench.startAndRun();
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::manual);
    EXPECT_EQ(bench.active(), display2);
}

TEST_F(AfterARestart, WithNothingDiscardedTheModeStays) {
    bench.defaults.values["kestrove.followMode"] = std::string("manual");
    bench.create();
    bench.startAndRun();
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::manual);
    EXPECT_EQ(bench.reasons(), std::vector<std::string>{"manualCandidatesUnavailable"});
}

TEST_F(AfterARestart, AModeThatTheUserChoseMeanwhileStays) {
    storeManual(R"([{"window":{"_0":5}}])");
    bench.create();
    bench.settings->followMode.set(FollowMode::focusedApp);
    bench.settings->followMode.set(FollowMode::manual);
    bench.startAndRun();
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::manual);
}

} // namespace
} // namespace kestrove
