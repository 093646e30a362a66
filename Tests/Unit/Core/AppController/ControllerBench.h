#pragma once

#include "Core/AppController/AppController.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Tests/Support/ScriptedDesktop/MemoryUserDefaults.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"
#include "Tests/Support/ScriptedDesktop/ScriptedHotKeyRegistrar.h"
#include "Tests/Support/ScriptedDesktop/ScriptedPointer.h"
#include "Tests/Support/ScriptedDesktop/ScriptedScreens.h"
#include "Tests/Support/ScriptedDesktop/ScriptedWindowServer.h"
#include "Tests/Support/ScriptedDesktop/ScriptedWorkspace.h"
#include "Tests/Unit/Core/AppController/ScriptedCollaborators.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kestrove {

inline const auto display1 = CaptureSource::display(1);
inline const auto display2 = CaptureSource::display(2);
inline const auto window5 = CaptureSource::window(5);
inline const auto window6 = CaptureSource::window(6);
inline const WindowOwnerIdentity editor{50, "org.example.editor"};

[[nodiscard]] std::string nameOf(CaptureSessionState state);
/// As test failures print it.
std::ostream& operator<<(std::ostream& out, CaptureSessionState state);
std::ostream& operator<<(std::ostream& out, CaptureSource source);

/// A controller with everything it works with in memory, on a virtual clock: two displays side by
/// side, 1 with the pointer on it and 2 to the right of it, and two windows.
class ControllerBench {
public:
    ControllerBench();

    /// Makes the controller; before that, a test fills `defaults`.
    AppController& create();
    /// The same, with `sources` picked by hand and the mode `manual`.
    AppController& createManual(const std::vector<CaptureSource>& sources);
    void destroy() { controller.reset(); }

    /// A session that runs, with an empty log.
    void startAndRun();
    void pointAt(DisplayID display);
    /// Lets the main thread do all that it can, without moving the clock.
    void settle() { loop.runUntilIdle(); }

    /// What was asked and published since the last call, without the questions about the desktop.
    [[nodiscard]] std::vector<std::string> events();
    [[nodiscard]] CaptureSessionState state() const { return controller->sessionState().get(); }
    [[nodiscard]] std::optional<CaptureSource> active() const {
        return controller->activeSource().get();
    }
    /// Reasons of the source-resolution lines so far.
    [[nodiscard]] std::vector<std::string> reasons() const;

    SimulatedMainLoop loop;
    CallLog calls;
    AwaitGate gate{loop};
    MemoryUserDefaults defaults;
    ScriptedPointer pointer{calls};
    ScriptedScreens screens;
    ScriptedWindowServer windowServer{calls};
    ScriptedWorkspace workspace{calls};
    ScriptedEngine engine{calls, gate};
    ScriptedRenderer renderer{calls};
    ScriptedContainer container{calls};
    ScriptedOutputControl window{calls};
    ScriptedOverlay overlay{calls};
    ScriptedLister lister{calls, gate};
    ScriptedScheduler scheduler{calls};
    ScriptedExistence existence;
    ScriptedLockState lockState;
    RecordingLog log;
    RecordedDiagnostics diagnostics;
    ScriptedKeyboard keyboard;
    GlobalShortcuts shortcuts{std::make_unique<ScriptedHotKeyRegistrar>(keyboard), log,
                              "dev.kestrove"};
    ScreenRecordingPermission permission = ScreenRecordingPermission::granted;
    /// What happens while the user is asked for the permission, once.
    std::function<void()> whileAsked;

    std::unique_ptr<AppSettings> settings;
    std::unique_ptr<ActiveDisplayTracker> tracker;
    std::unique_ptr<ActiveSourceResolver> resolver;
    std::unique_ptr<AppController> controller;

private:
    [[nodiscard]] FollowedDesktop followedDesktop() {
        return {loop, pointer, screens, windowServer, workspace};
    }
    [[nodiscard]] ScreenRecordingPermissionAccess permissionAccess();
    void watchPublishedFields();

    std::vector<Subscription> m_watching;
};

} // namespace kestrove
