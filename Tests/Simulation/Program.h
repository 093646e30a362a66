#pragma once

#include "Core/AppController/AppController.h"
#include "Core/AppController/TimerSourceRefreshScheduler.h"
#include "Core/CaptureEngine/CaptureEngine.h"
#include "Core/GlobalShortcuts/GlobalShortcuts.h"
#include "Core/LiveScreenRecordingPermission.h"
#include "Core/SourceLister/ScreenCaptureSourceSnapshotLister.h"
#include "Core/SourceLister/WindowServerExistenceChecker.h"
#include "Core/SourceLister/WorkspaceSessionLockMonitor.h"
#include "Platform/Simulated/SimulatedApplication.h"
#include "Platform/Simulated/SimulatedDisplayLayer.h"
#include "Platform/Simulated/SimulatedHotKeys.h"
#include "Platform/Simulated/SimulatedPointer.h"
#include "Platform/Simulated/SimulatedScreenCapture.h"
#include "Platform/Simulated/SimulatedScreenRecordingAccess.h"
#include "Platform/Simulated/SimulatedScreens.h"
#include "Platform/Simulated/SimulatedSystemLog.h"
#include "Platform/Simulated/SimulatedUserDefaults.h"
#include "Platform/Simulated/SimulatedWindowServer.h"
#include "Platform/Simulated/SimulatedWorkspace.h"
#include "Tests/Simulation/SimulatedOutputWindow.h"
#include "UI/Composer/OutputContainer.h"
#include "UI/OutputWindow/OutputWindowController.h"

#include <string>
#include <string_view>
#include <vector>

namespace kestrove::simulation {

/// Keeps the lines that a developer would see.
class KeptDiagnostics final : public DiagnosticOutput {
public:
    void writeLine(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;
};

/// Passes on to the real scheduler, and knows whether it is scheduled.
class WatchedScheduler final : public SourceRefreshScheduling {
public:
    explicit WatchedScheduler(MainLoop& loop)
        : m_scheduler(loop) {}

    void schedule(Seconds every, Operation operation) override {
        isScheduled = true;
        m_scheduler.schedule(every, std::move(operation));
    }
    void cancel() override {
        isScheduled = false;
        m_scheduler.cancel();
    }

    bool isScheduled = false;

private:
    TimerSourceRefreshScheduler m_scheduler;
};

/// One run of the program on a simulated desktop: everything of the product but its views and its
/// adapters, joined as the application joins it. The desktop, with what is stored, outlives it.
class Program {
public:
    explicit Program(SimulatedDesktop& desktop);

    void start() { controller.start(); }
    /// What happens when the last thing to do at the start is done.
    void didFinishLaunching();

    [[nodiscard]] SimulatedDisplayLayer& displayLayer() const { return *m_displayLayer; }
    [[nodiscard]] const SimulatedOutputWindow* window() const { return m_window; }
    [[nodiscard]] SimulatedOutputWindow* window() { return m_window; }
    /// The user has recorded shortcuts in the settings window.
    void editShortcuts(ShortcutBindings edited);
    [[nodiscard]] int shortcutEditCount() const { return m_shortcutEditCount; }
    /// What a viewer of the call sees in the output: null is the placeholder or black.
    [[nodiscard]] SimulatedFramePointer seen() const;

private:
    SimulatedDesktop& m_desktop;
    SimulatedScreenCapture m_screenCapture{m_desktop};
    SimulatedWindowServer m_windowServer{m_desktop};
    SimulatedWorkspace m_workspace{m_desktop};
    SimulatedScreens m_screens{m_desktop};
    SimulatedPointer m_pointer{m_desktop};
    SimulatedUserDefaults m_userDefaults{m_desktop};
    SimulatedApplication m_application{m_desktop};
    SimulatedHotKeys m_hotKeys{m_desktop};
    SimulatedSystemLog m_log;
    SimulatedDisplayLayer* m_displayLayer = nullptr;
    SimulatedOutputWindow* m_window = nullptr;
    int m_shortcutEditCount = 0;

    [[nodiscard]] FollowedDesktop followed();
    [[nodiscard]] std::unique_ptr<DisplayLayer> makeLayer();
    [[nodiscard]] OutputWindowPlatform windowPlatform();
    [[nodiscard]] AppControllerCollaborators collaborators();

public:
    SimulatedScreenRecordingAccess access{m_desktop};
    AppSettings settings{m_userDefaults};
    KeptDiagnostics diagnostics;

private:
    PermissionGuard m_permissionGuard;
    LiveScreenRecordingPermission m_permission;
    FrameRenderer m_renderer;
    CaptureEngine m_engine;
    ActiveDisplayTracker m_displayTracker;
    ActiveSourceResolver m_sourceResolver;
    ScreenCaptureSourceSnapshotLister m_lister;
    WindowServerExistenceChecker m_existenceChecker;
    WorkspaceSessionLockMonitor m_lockMonitor;

public:
    WatchedScheduler scheduler;
    SimulatedContainerView containerView;

private:
    OutputContainer m_container;

public:
    OutputWindowController outputWindow;
    GlobalShortcuts globalShortcuts;
    AppController controller;

private:
    std::vector<Subscription> m_observations;
};

} // namespace kestrove::simulation
