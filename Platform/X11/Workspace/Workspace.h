#pragma once

#include "Async/TaskScope.h"
#include "Desktop/Workspace.h"
#include "Platform/Linux/Session/SessionSignals.h"
#include "Platform/X11/TopLevelSelection.h"
#include "Platform/X11/Workspace/ApplicationEnds.h"

#include <memory>
#include <optional>

namespace kestrove::x11 {

/// Applications are processes that own windows. The one in front owns the window with the focus, as
/// the window manager says, or without one the keyboard's focus.
///
/// The lock of the session and the sleep of the machine are not X's to tell: they come from whoever
/// feeds `session`.
class Workspace final : public kestrove::Workspace {
public:
    /// All must outlive this.
    Workspace(Connection& connection, DescriptorWatching& watching, Applications& applications,
              SessionSignals& session);

    std::optional<RunningApplication> frontmostApplication() override;
    std::optional<RunningApplication> runningApplication(ProcessID process) override;

    Subscription onApplicationActivated(ApplicationCallback callback) override;
    /// Processes are followed from the first subscription on.
    Subscription onApplicationTerminated(ApplicationCallback callback) override;

    Subscription onSessionResignedActive(Callback callback) override;
    Subscription onSessionBecameActive(Callback callback) override;
    Subscription onScreensSlept(Callback callback) override;
    Subscription onScreensWoke(Callback callback) override;

private:
    std::optional<RunningApplication> readFrontmost();
    void handle(const xcb_generic_event_t& event);
    void lookSoon();
    void look();

    Connection& m_connection;
    DescriptorWatching& m_watching;
    Applications& m_applications;
    SessionSignals& m_session;
    RootSelection m_root;
    /// Without a window manager only the windows themselves are told of the focus.
    TopLevelSelection m_focus;
    /// The application that everybody takes for the frontmost one. Between two windows of one
    /// application no window may be active for a moment: that is no change unless somebody has
    /// asked and been told of it.
    std::optional<RunningApplication> m_frontmost;
    bool m_isLookQueued = false;
    /// Whether the last look found nobody in front.
    bool m_isNobodyInFront = false;
    std::unique_ptr<ApplicationEnds> m_ends;
    Signal<RunningApplication> m_activated;
    Subscription m_events;
    Subscription m_opened;
    TaskScope m_tasks;
};

} // namespace kestrove::x11
