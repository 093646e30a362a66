#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

namespace kestrove {
namespace {

using State = CaptureSessionState;
using Infos = std::vector<CaptureSourceInfo>;
using Events = std::vector<std::string>;

CaptureSourceInfo info(WindowID window, std::string title) {
    return {CaptureSource::window(window), std::move(title), std::nullopt, std::nullopt};
}

TEST(AppControllerLists, AKeptEntryFollowsWithItsPreviousTitle) {
    const Infos fresh{info(1, "A"), info(2, "B")};
    const Infos previous{info(2, "old B"), info(3, "old C"), info(4, "old D")};
    EXPECT_EQ(AppController::lists(fresh, {CaptureSource::window(3)}, previous),
              (Infos{info(1, "A"), info(2, "B"), info(3, "old C")}));
}

TEST(AppControllerLists, AKeptEntrySurvivesAnEmptyEnumeration) {
    const Infos previous{info(3, "C")};
    EXPECT_EQ(AppController::lists(Infos(), {CaptureSource::window(3)}, previous), previous);
}

TEST(AppControllerLists, WithNothingToKeepTheFreshListIsTheResult) {
    const Infos fresh{info(1, "A")};
    EXPECT_EQ(AppController::lists(fresh, {}, {info(2, "B")}), fresh);
}

TEST(AppControllerLists, AFreshEntryIsNotKeptTwice) {
    EXPECT_EQ(AppController::lists({info(2, "new")}, {CaptureSource::window(2)}, {info(2, "old")}),
              (Infos{info(2, "new")}));
}

TEST(AppControllerLists, KeptEntriesStayInTheirPreviousOrder) {
    const Infos previous{info(4, "D"), info(3, "C")};
    EXPECT_EQ(AppController::lists({info(1, "A")},
                                   {CaptureSource::window(3), CaptureSource::window(4)}, previous),
              (Infos{info(1, "A"), info(4, "D"), info(3, "C")}));
}

TEST(AppControllerAvailability, PublishesWhatWasListed) {
    ControllerBench bench;
    bench.create();
    bench.controller->scheduleSourceRefresh();
    EXPECT_EQ(bench.events(), Events());
    bench.settle();
    EXPECT_EQ(bench.events(), (Events{"fetch", "unavailable", "available"}));
    EXPECT_EQ(bench.controller->availableSources().get(), bench.lister.snapshot.lists);
    EXPECT_EQ(bench.lister.excluded, (WindowIDSet{900, 901}));
}

TEST(AppControllerAvailability, APickStaysListedUntilItComesBackToItsPlace) {
    ControllerBench bench;
    bench.createManual({window5});
    bench.controller->scheduleSourceRefresh();
    bench.settle();
    const auto before = bench.controller->availableSources().get();
    bench.lister.remove(window5);
    bench.controller->scheduleSourceRefresh();
    bench.settle();
    const auto& windows = bench.controller->availableSources().get().windows;
    ASSERT_EQ(windows.size(), 2U);
    EXPECT_EQ(windows.front().source, window6);
    EXPECT_EQ(windows.back(), before.windows.front());

    bench.lister.snapshot.lists = before;
    bench.controller->scheduleSourceRefresh();
    bench.settle();
    EXPECT_EQ(bench.controller->availableSources().get(), before);
}

TEST(AppControllerAvailability, TellsWhichPicksCannotBeConfirmed) {
    ControllerBench bench;
    bench.createManual({window5, window6});
    bench.existence.answers[5] = WindowExistence::temporarilyUnavailable;
    bench.controller->scheduleSourceRefresh();
    bench.settle();
    EXPECT_EQ(bench.controller->unavailableManualSources().get(), CaptureSourceSet{window5});
    EXPECT_TRUE(bench.diagnostics.lines.empty());
    EXPECT_EQ(bench.settings->manualSources.get(), (std::vector{window5, window6}));
}

TEST(AppControllerAvailability, PrunesTerminatedPicks) {
    ControllerBench bench;
    bench.createManual({window5, display1, window6});
    bench.existence.answers[5] = WindowExistence::terminated;
    bench.existence.answers[6] = WindowExistence::terminated;
    bench.controller->scheduleSourceRefresh();
    bench.settle();
    EXPECT_EQ(bench.diagnostics.lines,
              std::vector<std::string>{"[kestrove] pruned 2 terminated manual source(s)"});
    EXPECT_EQ(bench.settings->manualSources.get(), std::vector{display1});
}

TEST(AppControllerAvailability, APickWithoutAKnownOwnerIsReportedOnceAndNotChecked) {
    const Events skipped{"[kestrove] skipped manual window selection without owner identity"};
    ControllerBench bench;
    bench.createManual({window5, display1});
    bench.existence.answers[6] = WindowExistence::terminated;
    bench.diagnostics.lines.clear();
    const auto refresh = [&bench] {
        bench.controller->scheduleSourceRefresh();
        bench.settle();
        return std::exchange(bench.diagnostics.lines, {});
    };
    bench.settings->manualSources.set({window5, display1, window6});
    EXPECT_EQ(refresh(), skipped);
    EXPECT_EQ(bench.settings->manualSources.get(), (std::vector{window5, display1, window6}));
    EXPECT_EQ(refresh(), Events());

    bench.settings->manualSources.set({window5, display1});
    EXPECT_EQ(refresh(), Events());
    bench.settings->manualSources.set({window5, display1, window6});
    EXPECT_EQ(refresh(), skipped) << "picked anew";
}

TEST(AppControllerAvailability, AFailedEnumerationKeepsTheListsAndIsLogged) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    const auto before = bench.controller->availableSources().get();
    bench.lister.failure = PlatformError("X11", 42);
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.controller->availableSources().get(), before);
    EXPECT_EQ(bench.state(), State::running());
    EXPECT_EQ(bench.log.lines.back(),
              (RecordingLog::Line{"dev.kestrove", "source-resolution", LogLevel::error,
                                  "failed to list sources domain=X11 code=42"}));
    // No display is known until the next enumeration.
    bench.pointAt(2);
    EXPECT_EQ(bench.active(), display1);
    EXPECT_EQ(bench.reasons().back(), "availableDisplayUnavailable");
    // Then the pointer's display is shown without the pointer having to move.
    bench.lister.failure.reset();
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.active(), display2);
}

TEST(AppControllerAvailability, ADisplayThatTheEnumerationLearnsOfLateIsFollowed) {
    ControllerBench bench;
    bench.lister.remove(display2);
    bench.create();
    bench.startAndRun();
    bench.pointAt(2);
    EXPECT_EQ(bench.active(), display1);
    EXPECT_EQ(bench.reasons().back(), "displayIDNotEnumerated");
    bench.lister.addDisplay(2);
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.active(), display2);
    // Nothing is done again while the displays stay the same.
    static_cast<void>(bench.events());
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(std::ranges::count(bench.events(), "engine switch display 2"), 0);
}

TEST(AppControllerAvailability, ASessionThatWaitsForDisplaysEndsItsWaitingWithThem) {
    ControllerBench bench;
    bench.createManual({display1});
    bench.startAndRun();
    bench.settings->manualSources.set({});
    bench.lister.failure = PlatformError("X11", 42);
    bench.scheduler.tick();
    bench.settle();
    bench.settings->followMode.set(FollowMode::focusedApp);
    bench.settle();
    ASSERT_EQ(bench.state(), State::waitingForSource());
    bench.lister.failure.reset();
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.state(), State::running());
}

TEST(AppControllerAvailability, WithdrawnPermissionEndsASessionAtTheNextRefresh) {
    ControllerBench bench;
    bench.create();
    bench.startAndRun();
    bench.lister.failure = PlatformError("X11", 42);
    bench.permission = ScreenRecordingPermission::revoked;
    bench.scheduler.tick();
    bench.settle();
    EXPECT_EQ(bench.state(), State::permissionRequired(ScreenRecordingPermission::revoked));
    EXPECT_EQ(bench.controller->permissionStatus().get(), ScreenRecordingPermission::revoked);
    EXPECT_EQ(bench.container.content, nullptr);
    EXPECT_TRUE(bench.log.lines.empty());
}

TEST(AppControllerAvailability, WithdrawnPermissionIsOnlyLoggedWithoutASession) {
    ControllerBench bench;
    bench.create();
    bench.lister.failure = PlatformError("X11", 42);
    bench.permission = ScreenRecordingPermission::denied;
    bench.controller->scheduleSourceRefresh();
    bench.settle();
    EXPECT_EQ(bench.state(), State::stopped());
    EXPECT_EQ(bench.log.lines.size(), 1U);
}

TEST(AppControllerAvailability, OwnWindowsAreThoseThatExist) {
    ControllerBench bench;
    bench.create();
    bench.window.identifier = std::nullopt;
    EXPECT_EQ(bench.controller->selfCaptureWindowIDs(), WindowIDSet{901});
    bench.overlay.identifier = 0;
    EXPECT_EQ(bench.controller->selfCaptureWindowIDs(), WindowIDSet());
    bench.window.identifier = 1;
    EXPECT_EQ(bench.controller->selfCaptureWindowIDs(), WindowIDSet{1});
}

TEST(AppControllerAvailability, ASecondRefreshDuringTheFirstDoesNothing) {
    ControllerBench bench;
    bench.create();
    bench.gate.hold();
    bench.controller->scheduleSourceRefresh();
    bench.settle();
    bench.controller->scheduleSourceRefresh();
    bench.settle();
    EXPECT_EQ(bench.gate.waiting(), Events{"fetch"});
    bench.gate.open();
    bench.settle();
    const auto calls = bench.events();
    EXPECT_EQ(std::ranges::count(calls, "available"), 1);
}

} // namespace
} // namespace kestrove
