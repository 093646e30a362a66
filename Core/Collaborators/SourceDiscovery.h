#pragma once

#include "Async/MainLoop.h"
#include "Async/Task.h"
#include "Core/Collaborators/CaptureControlling.h"
#include "Core/SourceLister/SourceLists.h"
#include "Core/SourceLister/WindowExistence.h"
#include "Desktop/PlatformError.h"

#include <expected>

namespace kestrove {

// Source discovery as the controller sees it. Everything here is on the main thread.

class SourceRefreshScheduling {
public:
    SourceRefreshScheduling() = default;
    SourceRefreshScheduling(const SourceRefreshScheduling&) = delete;
    SourceRefreshScheduling& operator=(const SourceRefreshScheduling&) = delete;
    virtual ~SourceRefreshScheduling() = default;

    /// Runs `operation` every `interval` from now on; replaces any earlier schedule.
    virtual void schedule(Seconds every, Operation operation) = 0;
    /// The operation never runs again until the next `schedule`.
    virtual void cancel() = 0;
};

class SourceSnapshotListing {
public:
    SourceSnapshotListing() = default;
    SourceSnapshotListing(const SourceSnapshotListing&) = delete;
    SourceSnapshotListing& operator=(const SourceSnapshotListing&) = delete;
    virtual ~SourceSnapshotListing() = default;

    [[nodiscard]] virtual Task<std::expected<SourceLister::Snapshot, PlatformError>>
    fetch(WindowIDSet excludingWindowIDs) = 0;
};

class WindowExistenceChecking {
public:
    WindowExistenceChecking() = default;
    WindowExistenceChecking(const WindowExistenceChecking&) = delete;
    WindowExistenceChecking& operator=(const WindowExistenceChecking&) = delete;
    virtual ~WindowExistenceChecking() = default;

    [[nodiscard]] virtual WindowExistence existence(const ManualWindowSelection& of,
                                                    SessionLockState lockState) = 0;
};

class SessionLockStateProviding {
public:
    SessionLockStateProviding() = default;
    SessionLockStateProviding(const SessionLockStateProviding&) = delete;
    SessionLockStateProviding& operator=(const SessionLockStateProviding&) = delete;
    virtual ~SessionLockStateProviding() = default;

    [[nodiscard]] virtual SessionLockState state() const = 0;
};

/// The session as the source visibility coordinator sees it; the controller is one.
class SourceSessionControlling {
public:
    SourceSessionControlling() = default;
    SourceSessionControlling(const SourceSessionControlling&) = delete;
    SourceSessionControlling& operator=(const SourceSessionControlling&) = delete;
    virtual ~SourceSessionControlling() = default;

    virtual void safelyStopAfterStreamInterruption(CaptureSource source) = 0;
    [[nodiscard]] virtual Task<void>
    safelyStopIfActiveSourceTerminated(CaptureSourceSet terminated) = 0;
    /// True when the session runs again.
    [[nodiscard]] virtual Task<bool> resumeInterruptedSource(CaptureSource source) = 0;
    virtual void cancelSourceRefresh() = 0;
};

} // namespace kestrove
