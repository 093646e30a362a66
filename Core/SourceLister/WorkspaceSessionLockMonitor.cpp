#include "Core/SourceLister/WorkspaceSessionLockMonitor.h"

namespace kestrove {

WorkspaceSessionLockMonitor::WorkspaceSessionLockMonitor(Workspace& workspace,
                                                         Application& application)
    : m_state(application.isActive() ? SessionLockState::unlocked : SessionLockState::unknown) {
    const auto becomes = [this](SessionLockState state) {
        return [this, state] { m_state = state; };
    };
    m_observers = {
        workspace.onSessionResignedActive(becomes(SessionLockState::locked)),
        workspace.onSessionBecameActive(becomes(SessionLockState::unlocked)),
        workspace.onScreensSlept(becomes(SessionLockState::locked)),
        workspace.onScreensWoke(becomes(SessionLockState::unknown)),
    };
    m_applicationObserver = application.onBecameActive(becomes(SessionLockState::unlocked));
}

} // namespace kestrove
