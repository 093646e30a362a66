#include "Core/ActiveDisplayTracker/ActiveDisplayTracker.h"
#include "Core/ActiveSourceResolver/ActiveSourceResolver.h"
#include "Core/Settings/AppSettings.h"
#include "Platform/Simulated/SimulatedPlatform.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

/// Two displays side by side, with the editor's window on the first and the browser's on the
/// second.
class FollowingOnADesktop : public testing::Test {
protected:
    FollowingOnADesktop() {
        auto& desktop = m_platform.desktop;
        desktop.addDisplay({.displayID = 1, .frame = {0, 0, 1920, 1080}});
        desktop.addDisplay({.displayID = 2, .frame = {1920, 0, 1920, 1080}});
        m_editor = desktop.launchApplication({.bundleIdentifier = "org.example.editor"});
        m_browser = desktop.launchApplication({.bundleIdentifier = "org.example.browser"});
        m_editorWindow = desktop.openWindow({.processID = m_editor, .frame = {100, 100, 800, 600}});
        m_browserWindow =
            desktop.openWindow({.processID = m_browser, .frame = {2000, 100, 800, 600}});
        desktop.movePointer(onFirst);
        m_platform.loop.runUntilIdle();
    }

    [[nodiscard]] FollowedDesktop seam() {
        return {m_platform.loop, m_platform.pointer, m_platform.screens, m_platform.windowServer,
                m_platform.workspace};
    }
    void settle() { m_platform.loop.advance(Seconds(0.16)); }

    static constexpr Seconds debounceInterval{0.15};
    static constexpr Point onFirst{50, 50};
    static constexpr Point onSecond{2000, 50};

    SimulatedPlatform m_platform;
    ProcessID m_editor = 0;
    ProcessID m_browser = 0;
    WindowID m_editorWindow = 0;
    WindowID m_browserWindow = 0;
};

TEST_F(FollowingOnADesktop, TheTrackerFollowsThePointerAndThenTheFocus) {
    ActiveDisplayTracker tracker(seam(), FollowMode::mouse, debounceInterval);
    tracker.start(FollowMode::mouse);
    EXPECT_EQ(tracker.currentDisplay().get(), 1U);
    m_platform.desktop.movePointer(onSecond);
    settle();
    EXPECT_EQ(tracker.currentDisplay().get(), 2U);

    m_platform.desktop.activateApplication(m_editor);
    tracker.start(FollowMode::focusedApp);
    EXPECT_EQ(tracker.currentDisplay().get(), 1U);
    m_platform.desktop.activateApplication(m_browser);
    settle();
    EXPECT_EQ(tracker.currentDisplay().get(), 2U);
}

TEST_F(FollowingOnADesktop, TheTrackerNoticesADisplayThatHasGoneAtTheNextMove) {
    ActiveDisplayTracker tracker(seam(), FollowMode::mouse, debounceInterval);
    m_platform.desktop.movePointer(onSecond);
    tracker.start(FollowMode::mouse);
    EXPECT_EQ(tracker.currentDisplay().get(), 2U);
    m_platform.desktop.removeDisplay(2);
    m_platform.desktop.movePointer(onFirst);
    settle();
    EXPECT_EQ(tracker.currentDisplay().get(), 1U);
}

TEST_F(FollowingOnADesktop, TheResolverFollowsThePickedWindowInFront) {
    ActiveSourceResolver resolver(seam(), debounceInterval);
    resolver.setCandidates({CaptureSource::display(1), CaptureSource::window(m_browserWindow),
                            CaptureSource::window(m_editorWindow)});
    m_platform.desktop.activateApplication(m_editor);
    resolver.start();
    EXPECT_EQ(resolver.currentSource().get(), CaptureSource::window(m_editorWindow));
    m_platform.desktop.activateApplication(m_browser);
    settle();
    EXPECT_EQ(resolver.currentSource().get(), CaptureSource::window(m_browserWindow));
    m_platform.desktop.closeWindow(m_browserWindow);
    m_platform.desktop.movePointer({60, 60});
    settle();
    EXPECT_EQ(resolver.currentSource().get(), CaptureSource::display(1));
}

TEST_F(FollowingOnADesktop, SettingsSurviveTheRun) {
    {
        AppSettings settings(m_platform.userDefaults);
        settings.followMode.set(FollowMode::manual);
        settings.toggleManualSource(CaptureSource::window(m_editorWindow),
                                    ManualWindowSelection{m_editorWindow, {m_editor, "a"}});
        m_platform.desktop.defaults().setWritable(false);
        settings.targetFPS.set(60);
        EXPECT_EQ(settings.targetFPS.get(), 60) << "a full disk does not undo the choice";
    }
    SimulatedUserDefaults nextRun(m_platform.desktop);
    const AppSettings settings(nextRun);
    EXPECT_EQ(settings.followMode.get(), FollowMode::manual);
    EXPECT_EQ(settings.manualSources.get(), std::vector{CaptureSource::window(m_editorWindow)});
    EXPECT_EQ(settings.manualWindowSelections().at(m_editorWindow).owner.processID, m_editor);
    EXPECT_EQ(settings.targetFPS.get(), 30);
}

} // namespace
} // namespace kestrove
