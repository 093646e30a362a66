#pragma once

#include "Core/ActiveDisplayTracker/ActiveDisplayTracker.h"
#include "Core/ActiveSourceResolver/ActiveSourceResolver.h"
#include "Core/AppController/DiagnosticOutput.h"
#include "Core/Collaborators/CaptureControlling.h"
#include "Core/Collaborators/OutputControlling.h"
#include "Core/Collaborators/SourceDiscovery.h"
#include "Core/GlobalShortcuts/GlobalShortcuts.h"
#include "Core/ScreenRecordingPermission.h"
#include "Core/Settings/AppSettings.h"
#include "Desktop/SystemLog.h"

#include <functional>
#include <optional>
#include <string>

namespace kestrove {

/// Everything that the controller works with. All that is referred to outlives the controller,
/// which is its only user but for the settings and the output window.
struct AppControllerCollaborators {
    MainLoop& mainLoop;
    AppSettings& settings;
    FrameRendering& renderer;
    CaptureControlling& captureEngine;
    ActiveDisplayTracker& displayTracker;
    ActiveSourceResolver& sourceResolver;
    OutputContentControlling& outputContainer;
    OutputWindowControlling& outputWindow;
    /// Null on a desktop where nothing can mark the source.
    ActiveSourceOverlayControlling* activeOverlay = nullptr;
    SourceSnapshotListing& sourceLister;
    WindowExistenceChecking& windowExistenceChecker;
    SessionLockStateProviding& sessionLockState;
    SourceRefreshScheduling& sourceRefreshScheduler;
    ScreenRecordingPermissionAccess permissionAccess;
    /// The display under the pointer, where a session in an automatic follow mode begins.
    std::function<std::optional<DisplayID>()> displayIDUnderMouse;
    SystemLog& systemLog;
    /// The application's bundle identifier: the subsystem of every log line.
    std::string logSubsystem;
    DiagnosticOutput& diagnosticOutput;
    /// Null on a desktop without hot keys.
    GlobalShortcuts* globalShortcuts = nullptr;
    /// Opens the picker with previews, or brings it to the front; empty where there is none.
    std::function<void()> showSourcePicker = {};
};

} // namespace kestrove
