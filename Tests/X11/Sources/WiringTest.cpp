#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Sources/SourcesFixture.h"

#include <QApplication>
#include <QWidget>

#include <algorithm>
#include <string>
#include <vector>

namespace kestrove::test {
namespace {

/// Everything that the application joins, from the settings, handlers and callbacks at one end to
/// windows and pixels at the other.
class Wiring : public SourcesFixture {
protected:
    /// Ends the application and starts it on what is stored now.
    void startAnew() {
        controller().stop();
        ASSERT_TRUE(loop.runUntil([this] { return !app->delegate().isSharing(); }));
        app.reset();
        app = std::make_unique<KestroveApp>(KestroveGround{loop, log, defaults, *x11Desktop});
        app->delegate().applicationDidFinishLaunching();
    }

    void run(ShortcutAction action) { controller().globalShortcutHandlers().at(action)(); }

    [[nodiscard]] CaptureSessionState state() { return controller().sessionState().get(); }

    /// Whether any of the output lies on a display.
    [[nodiscard]] bool isOutputInSight() {
        const auto window = app->outputWindow().windowID().value_or(0);
        auto* const connection = desktop().connection();
        const Reply place(xcb_translate_coordinates_reply(
            connection, xcb_translate_coordinates(connection, window, desktop().root(), 0, 0),
            nullptr));
        return place && place->dst_x < rightPlace.x + rightPlace.width &&
               place->dst_y < rightPlace.height;
    }

    /// It has come to the front.
    [[nodiscard]] static bool isPickerOpen() {
        return std::ranges::any_of(QApplication::topLevelWidgets(), [](const QWidget* each) {
            return each->windowTitle() == QStringLiteral("kestrove — ソース選択") &&
                   server().propertyItem(desktop().root(), "_NET_ACTIVE_WINDOW") == each->winId();
        });
    }

    [[nodiscard]] bool isListed(const Program& program) {
        const auto& windows = controller().availableSources().get().windows;
        return std::ranges::find(windows, program.source(), &CaptureSourceInfo::source) !=
               windows.end();
    }
};

TEST_F(Wiring, TheHiddenModeTakesTheOutputOffTheDesktopAndBack) {
    start();
    settings().hideOutputWindow.set(true);
    EXPECT_TRUE(loop.runUntil([this] { return !isOutputInSight(); }));
    settings().hideOutputWindow.set(false);
    EXPECT_TRUE(loop.runUntil([this] { return isOutputInSight(); }));
}

TEST_F(Wiring, PicksAndFollowModesMoveTheStream) {
    start();
    ASSERT_TRUE(shows(leftColor));
    settings().manualSources.set({display("RIGHT")});
    EXPECT_EQ(state(), CaptureSessionState::running()) << "picks count in their own mode only";
    EXPECT_EQ(controller().activeSource().get(), display("LEFT"));
    settings().followMode.set(FollowMode::manual);
    EXPECT_TRUE(isActive(display("RIGHT")));
    settings().manualSources.set({display("LEFT")});
    EXPECT_TRUE(isActive(display("LEFT")));
    settings().manualSources.set({});
    EXPECT_TRUE(reaches(CaptureSessionState::waitingForSource()));
    server().movePointer(1300, 20);
    settings().followMode.set(FollowMode::mouse);
    EXPECT_TRUE(isActive(display("RIGHT")));
    EXPECT_TRUE(reaches(CaptureSessionState::running()));
    EXPECT_TRUE(shows(rightColor));
    const auto program = startProgram("onleft", {100, 100, 300, 200}, 0xff00ff00);
    settings().followMode.set(FollowMode::focusedApp);
    EXPECT_TRUE(isActive(display("LEFT")));
}

TEST_F(Wiring, TheSourcesAreListedEveryFiveSecondsOfASession) {
    start();
    // Halfway between two of them.
    const auto halfway = loop.now() + Seconds(7.5);
    ASSERT_TRUE(loop.runUntil([&] { return loop.now() > halfway; }));
    const auto late = startProgram("late", {100, 100, 300, 200}, 0xff00ff00);
    ASSERT_FALSE(isListed(late));
    // Not while the clock stands still, but with the next of them.
    loop.advance(Seconds(2.6));
    EXPECT_TRUE(loop.spinUntil([&] { return isListed(late); }));

    controller().stop();
    ASSERT_TRUE(reaches(CaptureSessionState::stopped()));
    const auto later = startProgram("later", {500, 100, 300, 200}, 0xff00ffff);
    const auto end = loop.now() + Seconds(20);
    ASSERT_TRUE(loop.runUntil([&] { return loop.now() > end; }));
    EXPECT_FALSE(isListed(later)) << "nobody looks";
}

TEST_F(Wiring, EachShortcutDoesItsOwn) {
    ASSERT_EQ(controller().globalShortcutHandlers().size(), 4U);
    run(ShortcutAction::startStop);
    EXPECT_TRUE(reaches(CaptureSessionState::running()));
    settings().followMode.set(FollowMode::manual);
    ASSERT_TRUE(reaches(CaptureSessionState::waitingForSource()));
    run(ShortcutAction::startStop);
    EXPECT_TRUE(reaches(CaptureSessionState::stopped()));

    run(ShortcutAction::hideToggle);
    EXPECT_TRUE(settings().hideOutputWindow.get());
    run(ShortcutAction::hideToggle);
    EXPECT_FALSE(settings().hideOutputWindow.get());
    run(ShortcutAction::hideToggle);
    ASSERT_TRUE(loop.runUntil([this] { return !isOutputInSight(); }));
    run(ShortcutAction::showWindow);
    EXPECT_FALSE(settings().hideOutputWindow.get());
    EXPECT_TRUE(loop.runUntil([this] { return isOutputInSight(); }));

    EXPECT_FALSE(isPickerOpen());
    run(ShortcutAction::showPicker);
    EXPECT_TRUE(loop.runUntil([] { return isPickerOpen(); }));
}

TEST_F(Wiring, AStreamThatEndsBringsTheSessionToASafeEnd) {
    ASSERT_NO_FATAL_FAILURE(tick(display("RIGHT")));
    start();
    ASSERT_TRUE(shows(rightColor));
    server().removeMonitor("RIGHT");
    EXPECT_TRUE(
        reaches(CaptureSessionState::recoveryRequired(CaptureRecoveryReason::streamStopped)));
    EXPECT_NE(colorNow(), rightColor);
    run(ShortcutAction::startStop);
    EXPECT_TRUE(loop.runUntil([this] { return app->delegate().isSharing(); }));
}

TEST_F(Wiring, OurOwnWindowsAreNeitherOfferedNorShown) {
    start();
    ASSERT_TRUE(shows(leftColor)) << "the output lies on the display that it shows";
    const auto own = controller().selfCaptureWindowIDs();
    EXPECT_TRUE(own.contains(app->outputWindow().windowID().value_or(0)));
    for (const auto& offered : controller().availableSources().get().windows)
        EXPECT_FALSE(own.contains(offered.source.identifier()));
}

TEST_F(Wiring, ThePermissionIsKnownWithoutAStart) {
    EXPECT_TRUE(loop.spinUntil([this] {
        return controller().permissionStatus().get() == ScreenRecordingPermission::granted;
    }));
    EXPECT_EQ(state(), CaptureSessionState::stopped());
}

TEST_F(Wiring, ANewRunKeepsPickedDisplaysForgetsWindowsAndStartsByItself) {
    const auto program = startProgram("picked", {300, 200, 500, 300}, 0xffff0000);
    ASSERT_NO_FATAL_FAILURE(tick(program.source()));
    ASSERT_NO_FATAL_FAILURE(tick(display("RIGHT")));
    ASSERT_EQ(settings().manualSources.get().size(), 2U);
    settings().autoStart.set(true);
    ASSERT_NO_FATAL_FAILURE(startAnew());
    EXPECT_EQ(settings().manualSources.get(), std::vector{display("RIGHT")});
    EXPECT_TRUE(reaches(CaptureSessionState::running()));
    EXPECT_TRUE(isActive(display("RIGHT")));
}

TEST_F(Wiring, TheShortcutsInForceAreThoseOfTheSettings) {
    auto bindings = settings().shortcutBindings.get();
    EXPECT_EQ(bindings, defaultShortcutBindings());
    // Two actions on one key: taken back on the next turn of the main loop.
    bindings[ShortcutAction::startStop] = bindings[ShortcutAction::hideToggle];
    settings().shortcutBindings.set(bindings);
    EXPECT_TRUE(loop.spinUntil(
        [this] { return settings().shortcutBindings.get() == defaultShortcutBindings(); }));
}

} // namespace
} // namespace kestrove::test
