#pragma once

#include "Async/Subscription.h"
#include "Core/Collaborators/SourceDiscovery.h"
#include "Desktop/Application.h"
#include "Desktop/Workspace.h"

#include <array>

namespace kestrove {

/// Keeps track of whether the session is locked. Nobody is told of changes: readers poll.
///
/// Screens that wake only make the state unknown, because the lock screen may still be up. What
/// proves that the user is back is the session becoming active, or one of our own windows getting
/// the focus.
///
/// Thread: main. Lifetime: what it is given outlives it.
class WorkspaceSessionLockMonitor final : public SessionLockStateProviding {
public:
    /// Unlocked when we are the active application, unknown otherwise.
    WorkspaceSessionLockMonitor(Workspace& workspace, Application& application);

    SessionLockState state() const override { return m_state; }

private:
    SessionLockState m_state;
    std::array<Subscription, 4> m_observers;
    Subscription m_applicationObserver;
};

} // namespace kestrove
