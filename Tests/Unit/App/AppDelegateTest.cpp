#include "App/AppDelegate.h"

#include "Tests/Support/ScriptedDesktop/ScriptedApplication.h"
#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Permission = ScreenRecordingPermission;
using Events = std::vector<std::string>;

/// The delegate over a real controller on the bench.
class AppDelegateTest : public testing::Test {
protected:
    void launch() {
        bench.create();
        delegate = std::make_unique<AppDelegate>(
            application, *bench.settings, *bench.controller, bench.window, bench.container,
            bench.overlay, [this] { return hasTray; }, [this] { ++panelsOpened; });
        (void)bench.events();
        delegate->applicationDidFinishLaunching();
        bench.settle();
    }
    [[nodiscard]] bool hasDone(const std::string& event) {
        const auto events = bench.events();
        return std::ranges::find(events, event) != events.end();
    }

    ControllerBench bench;
    ScriptedApplication application;
    bool hasTray = true;
    int panelsOpened = 0;
    std::unique_ptr<AppDelegate> delegate;
};

TEST_F(AppDelegateTest, BecomesARegularApplicationInFront) {
    launch();
    EXPECT_EQ(application.policy, ActivationPolicy::regular);
    EXPECT_TRUE(application.active);
    EXPECT_EQ(bench.state(), State::stopped()) << "only on demand";
}

TEST_F(AppDelegateTest, ShowsTheOutputWhereThereIsNoOtherWayIn) {
    hasTray = false;
    launch();
    EXPECT_TRUE(hasDone("show window"));
}

TEST_F(AppDelegateTest, LeavesTheOutputToTheSessionWhereThereIsATray) {
    launch();
    EXPECT_FALSE(hasDone("show window"));
}

TEST_F(AppDelegateTest, StartsByItselfWhenTheUserWantsThat) {
    bench.defaults.values["kestrove.autoStart"] = true;
    launch();
    EXPECT_EQ(bench.state(), State::running());
}

TEST_F(AppDelegateTest, DoesNotStartWhatIsOnOrOnItsWay) {
    bench.defaults.values["kestrove.autoStart"] = true;
    launch();
    const auto startsAnew = [this] {
        (void)bench.events();
        delegate->applicationDidFinishLaunching();
        return hasDone("state starting");
    };
    for (const auto& source : {std::vector<CaptureSource>{}, std::vector{display2}}) {
        bench.settings->manualSources.set(source);
        bench.settings->followMode.set(FollowMode::manual);
        bench.settle();
        EXPECT_TRUE(delegate->isSharing()) << bench.state();
        EXPECT_FALSE(startsAnew()) << bench.state();
    }
    bench.controller->stop();
    ASSERT_EQ(bench.state(), State::stopping());
    EXPECT_TRUE(delegate->isSharing());
    delegate->applicationDidFinishLaunching();
    bench.settle();
    EXPECT_EQ(bench.state(), State::stopped());
    EXPECT_FALSE(delegate->isSharing());
}

TEST_F(AppDelegateTest, LooksAtThePermissionWhenItBecomesActiveWhileIdle) {
    launch();
    bench.permission = Permission::denied;
    application.becameActive.emit();
    EXPECT_EQ(bench.state(), State::permissionRequired(Permission::denied));
    EXPECT_EQ(bench.controller->permissionStatus().get(), Permission::denied);
}

TEST_F(AppDelegateTest, DoesNotDisturbASessionWhenItBecomesActive) {
    launch();
    bench.startAndRun();
    bench.permission = Permission::revoked;
    application.becameActive.emit();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
}

TEST_F(AppDelegateTest, NoLongerLooksAtThePermissionWhenItIsGone) {
    launch();
    delegate.reset();
    bench.permission = Permission::denied;
    application.becameActive.emit();
    EXPECT_EQ(bench.state(), State::stopped());
}

TEST_F(AppDelegateTest, OpensThePanelWhenTheUserStartsItOnceMore) {
    launch();
    delegate->applicationStartedAgain();
    EXPECT_EQ(panelsOpened, 1);
}

TEST_F(AppDelegateTest, StaysWithoutItsWindowOnlyInATray) {
    launch();
    bench.startAndRun();
    delegate->outputWindowClosed();
    bench.settle();
    EXPECT_FALSE(application.hasQuit);
    EXPECT_EQ(bench.state(), State::running());
    hasTray = false; // the tray has ended
    delegate->outputWindowClosed();
    bench.settle();
    EXPECT_TRUE(application.hasQuit);
    EXPECT_EQ(bench.state(), State::stopped());
}

TEST_F(AppDelegateTest, StopsTheSessionBeforeItEnds) {
    launch();
    bench.startAndRun();
    delegate->terminate();
    EXPECT_TRUE(application.hasQuit);
    EXPECT_EQ(bench.state(), State::stopping());
    bench.settle();
    EXPECT_EQ(bench.state(), State::stopped());
}

TEST_F(AppDelegateTest, WhatIsStoppedLooksStoppedAtOnce) {
    launch();
    bench.startAndRun();
    bench.controller->stop();
    EXPECT_TRUE(hasDone("hide mark"));
    bench.settle();
    EXPECT_TRUE(hasDone("show placeholder"));
}

} // namespace
} // namespace kestrove
