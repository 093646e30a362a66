#pragma once

#include "Async/Subscription.h"
#include "Desktop/Identifiers.h"

#include <functional>
#include <optional>
#include <string>

namespace kestrove {

struct RunningApplication {
    ProcessID processID = 0;
    /// Absent when the desktop does not know the application.
    std::optional<std::string> bundleIdentifier;

    bool operator==(const RunningApplication&) const = default;
};

/// What the user's session tells of its applications, its screens and itself.
///
/// Thread: main. Callbacks come from the main loop, never inside a call of this interface.
class Workspace {
public:
    using ApplicationCallback = std::function<void(const RunningApplication&)>;
    using Callback = std::function<void()>;

    Workspace() = default;
    Workspace(const Workspace&) = delete;
    Workspace& operator=(const Workspace&) = delete;
    virtual ~Workspace() = default;

    /// The application whose window has the focus; absent when none has.
    [[nodiscard]] virtual std::optional<RunningApplication> frontmostApplication() = 0;

    /// Absent when no such process runs.
    [[nodiscard]] virtual std::optional<RunningApplication>
    runningApplication(ProcessID process) = 0;

    /// Another application came to the front; not told when only another window of the same one
    /// did.
    [[nodiscard]] virtual Subscription onApplicationActivated(ApplicationCallback callback) = 0;
    /// An application that had windows has ended, however it ended.
    [[nodiscard]] virtual Subscription onApplicationTerminated(ApplicationCallback callback) = 0;

    /// The session was locked, or another session took the seat.
    [[nodiscard]] virtual Subscription onSessionResignedActive(Callback callback) = 0;
    [[nodiscard]] virtual Subscription onSessionBecameActive(Callback callback) = 0;
    [[nodiscard]] virtual Subscription onScreensSlept(Callback callback) = 0;
    [[nodiscard]] virtual Subscription onScreensWoke(Callback callback) = 0;
};

} // namespace kestrove
