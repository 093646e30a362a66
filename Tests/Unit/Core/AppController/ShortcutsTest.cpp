#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Events = std::vector<std::string>;

/// Presses the default key of an action, as the system would.
void press(ControllerBench& bench, ShortcutAction action) {
    ASSERT_TRUE(bench.keyboard.press(defaultShortcutBindings().at(action).registrationKey()));
}

bool isShown(const Events& events) {
    return std::ranges::find(events, "show window") != events.end();
}

TEST(AppControllerShortcuts, StartAndStop) {
    ControllerBench bench;
    bench.create();
    press(bench, ShortcutAction::startStop);
    EXPECT_EQ(bench.state(), State::starting());
    bench.settle();
    EXPECT_EQ(bench.state().kind(), State::Kind::running);
    press(bench, ShortcutAction::startStop);
    EXPECT_EQ(bench.state(), State::stopping());
    press(bench, ShortcutAction::startStop);
    bench.settle();
    EXPECT_EQ(bench.state(), State::stopped()) << "a press while it stops starts nothing";
    press(bench, ShortcutAction::startStop);
    EXPECT_EQ(bench.state(), State::starting());
    press(bench, ShortcutAction::startStop);
    bench.settle();
    EXPECT_EQ(bench.state(), State::stopped());
}

TEST(AppControllerShortcuts, StopASessionThatWaitsOrSwitches) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.startAndRun();
    bench.settings->removeManualSources({window5});
    bench.settle();
    ASSERT_EQ(bench.state(), State::waitingForSource());
    press(bench, ShortcutAction::startStop);
    bench.settle();
    EXPECT_EQ(bench.state(), State::stopped());

    bench.controller->toggleSource(window6, editor);
    bench.startAndRun();
    bench.gate.hold();
    bench.settings->followMode.set(FollowMode::mouse);
    bench.settle();
    ASSERT_EQ(bench.state().kind(), State::Kind::switching);
    press(bench, ShortcutAction::startStop);
    bench.gate.open();
    bench.settle();
    EXPECT_EQ(bench.state(), State::stopped());
}

TEST(AppControllerShortcuts, StartAgainAfterARefusalOrAFailure) {
    ControllerBench bench;
    bench.create();
    bench.permission = ScreenRecordingPermission::denied;
    press(bench, ShortcutAction::startStop);
    ASSERT_EQ(bench.state(), State::permissionRequired(ScreenRecordingPermission::denied));
    bench.permission = ScreenRecordingPermission::granted;
    press(bench, ShortcutAction::startStop);
    EXPECT_EQ(bench.state(), State::starting());
    bench.settle();
    bench.engine.endStream();
    bench.settle();
    ASSERT_EQ(bench.state(), State::recoveryRequired(CaptureRecoveryReason::streamStopped));
    press(bench, ShortcutAction::startStop);
    EXPECT_EQ(bench.state(), State::starting());
}

TEST(AppControllerShortcuts, ShowThePicker) {
    ControllerBench bench;
    bench.create();
    press(bench, ShortcutAction::showPicker);
    EXPECT_EQ(bench.events(), Events{"show picker"});
}

TEST(AppControllerShortcuts, ShowTheWindowAndEndItsHiding) {
    ControllerBench bench;
    bench.create();
    press(bench, ShortcutAction::showWindow);
    EXPECT_EQ(bench.events(), Events{"show window"});
    bench.settings->hideOutputWindow.set(true);
    (void)bench.events();
    press(bench, ShortcutAction::showWindow);
    EXPECT_FALSE(bench.settings->hideOutputWindow.get());
    EXPECT_EQ(bench.window.isHidden, false);
    EXPECT_EQ(bench.events(), Events{"show window"});
}

TEST(AppControllerShortcuts, ToggleHidingAndShowOnlyWhatIsVisible) {
    ControllerBench bench;
    bench.create();
    press(bench, ShortcutAction::hideToggle);
    EXPECT_TRUE(bench.settings->hideOutputWindow.get());
    EXPECT_FALSE(isShown(bench.events()));
    press(bench, ShortcutAction::hideToggle);
    EXPECT_FALSE(bench.settings->hideOutputWindow.get());
    EXPECT_TRUE(isShown(bench.events()));
}

TEST(AppControllerShortcuts, DoNothingOnceTheControllerHasGone) {
    ControllerBench bench;
    bench.create();
    bench.destroy();
    bench.settings->shortcutBindings.set({});
    EXPECT_TRUE(bench.shortcuts.operationFailures().get().empty()) << "nobody installs edits";
}

} // namespace
} // namespace kestrove
