#include "Async/TaskScope.h"
#include "Core/SourceLister/ScreenCaptureSourceSnapshotLister.h"
#include "Core/SourceLister/SourceVisibilityCoordinator.h"
#include "Core/SourceLister/WindowServerExistenceChecker.h"
#include "Core/SourceLister/WorkspaceSessionLockMonitor.h"
#include "Platform/Simulated/SimulatedPlatform.h"

#include <gtest/gtest.h>

#include <memory>

namespace kestrove {
namespace {

using RefreshResult = SourceVisibilityCoordinator::RefreshResult;
using Refresh = SourceVisibilityCoordinator::Refresh;

/// A session that stops and resumes at once, and says what it was asked for.
class ObedientSession final : public SourceSessionControlling {
public:
    void safelyStopAfterStreamInterruption(CaptureSource /*source*/) override {}
    Task<void> safelyStopIfActiveSourceTerminated(CaptureSourceSet terminated) override {
        stopped = std::move(terminated);
        co_return;
    }
    Task<bool> resumeInterruptedSource(CaptureSource source) override {
        resumed = source;
        co_return true;
    }
    void cancelSourceRefresh() override { ++cancelCount; }

    CaptureSourceSet stopped;
    std::optional<CaptureSource> resumed;
    int cancelCount = 0;
};

/// The whole chain from the desktop to the session: the user picked the editor's window, and the
/// session is unlocked.
class SourceVisibilityOnADesktop : public testing::Test {
protected:
    SourceVisibilityOnADesktop() {
        auto& desktop = m_platform.desktop;
        desktop.addDisplay({.displayID = 1, .frame = {0, 0, 1920, 1080}, .name = "Left"});
        m_editor = desktop.launchApplication({.bundleIdentifier = identifier, .name = "Editor"});
        m_window = desktop.openWindow(
            {.processID = m_editor, .title = "Notes", .frame = {0, 0, 400, 300}});
        desktop.activateApplication(desktop.ownProcess());
        m_lockMonitor = std::make_unique<WorkspaceSessionLockMonitor>(m_platform.workspace,
                                                                      m_platform.application);
        m_coordinator = std::make_unique<SourceVisibilityCoordinator>(m_lister, m_checker,
                                                                      *m_lockMonitor, &m_session);
        m_platform.loop.runUntilIdle();
    }

    static Task<void> run(SourceVisibilityCoordinator& coordinator,
                          std::vector<ManualWindowSelection> selections,
                          std::vector<CaptureSource> selected, std::optional<RefreshResult>* into) {
        WindowIDSet excluded;
        auto result = co_await coordinator.refresh(std::move(selections), std::move(selected),
                                                   std::move(excluded));
        *into = std::move(result);
    }
    Refresh refresh() {
        std::optional<RefreshResult> result;
        m_scope.launch(
            run(*m_coordinator, {{m_window, {m_editor, identifier}}}, {source()}, &result));
        m_platform.loop.runUntilIdle();
        if (!result || !*result || !**result) {
            ADD_FAILURE() << "the refresh did not end well";
            return {};
        }
        return ***result;
    }
    [[nodiscard]] CaptureSource source() const { return CaptureSource::window(m_window); }
    void setOnScreen(bool isOnScreen) {
        auto window = *m_platform.desktop.findWindow(m_window);
        window.isOnScreen = isOnScreen;
        m_platform.desktop.setWindow(window);
    }

    static constexpr auto identifier = "org.example.editor";

    SimulatedPlatform m_platform;
    ProcessID m_editor = 0;
    WindowID m_window = 0;
    ObedientSession m_session;
    ScreenCaptureSourceSnapshotLister m_lister{m_platform.screenCapture, m_platform.screens,
                                               m_platform.application, m_platform.systemLog};
    WindowServerExistenceChecker m_checker{m_platform.windowServer, m_platform.workspace};
    std::unique_ptr<WorkspaceSessionLockMonitor> m_lockMonitor;
    std::unique_ptr<SourceVisibilityCoordinator> m_coordinator;
    TaskScope m_scope{m_platform.loop};
};

TEST_F(SourceVisibilityOnADesktop, WhatIsThereIsListed) {
    const auto result = refresh();
    EXPECT_EQ(result.lists.displays,
              (std::vector<CaptureSourceInfo>{
                  {CaptureSource::display(1), "Left", "1920 × 1080", std::nullopt}}));
    EXPECT_EQ(result.lists.windows,
              (std::vector<CaptureSourceInfo>{
                  {source(), "Notes", "Editor", WindowOwnerIdentity{m_editor, identifier}}}));
    EXPECT_TRUE(result.terminatedSources.empty());
    EXPECT_TRUE(result.unavailableSources.empty());
}

TEST_F(SourceVisibilityOnADesktop, AMinimisedWindowWaitsAndIsResumedWhenItIsBack) {
    m_coordinator->setInterruptedSource(source());
    setOnScreen(false);
    (void)refresh();
    EXPECT_EQ(m_session.resumed, std::nullopt);
    setOnScreen(true);
    (void)refresh();
    EXPECT_EQ(m_session.resumed, source());
    EXPECT_EQ(m_coordinator->interruptedSource(), std::nullopt);
}

TEST_F(SourceVisibilityOnADesktop, AClosedWindowStopsTheSession) {
    m_coordinator->setInterruptedSource(source());
    m_platform.desktop.closeWindow(m_window);
    EXPECT_EQ(refresh().terminatedSources, CaptureSourceSet{source()});
    EXPECT_EQ(m_session.stopped, CaptureSourceSet{source()});
    EXPECT_EQ(m_session.cancelCount, 1);
}

TEST_F(SourceVisibilityOnADesktop, AQuitWhileTheScreenIsLockedIsNoticedAfterTheUnlock) {
    m_platform.desktop.resignSession();
    m_platform.desktop.terminateApplication(m_editor);
    m_platform.loop.runUntilIdle();
    const auto locked = refresh();
    EXPECT_TRUE(locked.terminatedSources.empty());
    EXPECT_EQ(locked.unavailableSources, CaptureSourceSet{source()});
    EXPECT_TRUE(m_session.stopped.empty());

    m_platform.desktop.becomeSession();
    m_platform.loop.runUntilIdle();
    EXPECT_EQ(refresh().terminatedSources, CaptureSourceSet{source()});
    EXPECT_EQ(m_session.stopped, CaptureSourceSet{source()});
}

TEST_F(SourceVisibilityOnADesktop, ANewInstanceWithTheSameNumbersIsNotTheOldOne) {
    m_platform.desktop.terminateApplication(m_editor);
    m_platform.loop.runUntilIdle();
    m_platform.desktop.launchApplication(
        {.processID = m_editor, .bundleIdentifier = identifier, .name = "Editor"});
    m_platform.desktop.openWindow(
        {.windowID = m_window, .processID = m_editor, .title = "Notes", .frame = {0, 0, 400, 300}});
    EXPECT_EQ(refresh().terminatedSources, CaptureSourceSet{source()});
}

TEST_F(SourceVisibilityOnADesktop, SleepingScreensTerminateNothing) {
    m_platform.desktop.sleepScreens();
    m_platform.desktop.closeWindow(m_window);
    m_platform.loop.runUntilIdle();
    EXPECT_EQ(refresh().unavailableSources, CaptureSourceSet{source()});
    m_platform.desktop.wakeScreens();
    m_platform.loop.runUntilIdle();
    EXPECT_EQ(refresh().unavailableSources, CaptureSourceSet{source()}) << "the lock may be up";
    m_platform.desktop.activateApplication(m_editor);
    m_platform.desktop.activateApplication(m_platform.desktop.ownProcess());
    m_platform.loop.runUntilIdle();
    EXPECT_EQ(refresh().terminatedSources, CaptureSourceSet{source()});
}

TEST_F(SourceVisibilityOnADesktop, ARefusedSnapshotIsAnErrorAndTheNextOneWorks) {
    m_platform.desktop.setRecordingAllowed(false);
    std::optional<RefreshResult> result;
    m_scope.launch(run(*m_coordinator, {}, {}, &result));
    m_platform.loop.runUntilIdle();
    ASSERT_TRUE(result);
    EXPECT_FALSE(result->has_value());
    m_platform.desktop.setRecordingAllowed(true);
    EXPECT_EQ(refresh().lists.displays.size(), 1U);
}

} // namespace
} // namespace kestrove
