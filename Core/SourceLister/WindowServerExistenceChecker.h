#pragma once

#include "Async/Subscription.h"
#include "Core/Collaborators/SourceDiscovery.h"
#include "Desktop/WindowServer.h"
#include "Desktop/Workspace.h"

#include <unordered_set>

namespace kestrove {

/// Asks the window server what has become of a picked window, and remembers every application that
/// ends during this run: its windows stay gone even when its process number is used again. Whether
/// a window is on screen does not matter; a minimised one exists.
///
/// Thread: main. Lifetime: what it is given outlives it.
class WindowServerExistenceChecker final : public WindowExistenceChecking {
public:
    /// Watches for ending applications from now on.
    WindowServerExistenceChecker(WindowServer& windowServer, Workspace& workspace);

    WindowExistence existence(const ManualWindowSelection& of, SessionLockState lockState) override;

private:
    [[nodiscard]] WindowExistence existenceWhileUnlocked(const ManualWindowSelection& selection);

    WindowServer& m_windowServer;
    Workspace& m_workspace;
    /// Only ever grows.
    std::unordered_set<WindowOwnerIdentity> m_terminatedOwners;
    Subscription m_observer;
};

} // namespace kestrove
