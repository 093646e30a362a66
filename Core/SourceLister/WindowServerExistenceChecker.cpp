#include "Core/SourceLister/WindowServerExistenceChecker.h"

#include <algorithm>
#include <utility>

namespace kestrove {

WindowServerExistenceChecker::WindowServerExistenceChecker(WindowServer& windowServer,
                                                           Workspace& workspace)
    : m_windowServer(windowServer)
    , m_workspace(workspace)
    , m_observer(workspace.onApplicationTerminated([this](const RunningApplication& application) {
        if (application.bundleIdentifier)
            m_terminatedOwners.insert({application.processID, *application.bundleIdentifier});
    })) {}

WindowExistence WindowServerExistenceChecker::existence(const ManualWindowSelection& of,
                                                        SessionLockState lockState) {
    switch (lockState) {
    case SessionLockState::locked:
        return WindowExistence::temporarilyUnavailable;
    case SessionLockState::unknown:
        return WindowExistence::unknown;
    case SessionLockState::unlocked:
        return existenceWhileUnlocked(of);
    }
    std::unreachable();
}

WindowExistence
WindowServerExistenceChecker::existenceWhileUnlocked(const ManualWindowSelection& selection) {
    if (m_terminatedOwners.contains(selection.owner))
        return WindowExistence::terminated;
    const auto windows = m_windowServer.windowList(WindowListOptions::excludeDesktopElements);
    if (!windows)
        return WindowExistence::temporarilyUnavailable;
    const auto found =
        std::ranges::find(*windows, selection.windowID, &WindowDescription::windowNumber);
    if (found == windows->end())
        return WindowExistence::terminated;
    if (!found->ownerProcessID)
        return WindowExistence::temporarilyUnavailable;
    if (found->ownerProcessID != selection.owner.processID)
        return WindowExistence::terminated;
    const auto application = m_workspace.runningApplication(selection.owner.processID);
    const bool isSameApplication =
        application && application->bundleIdentifier == selection.owner.bundleIdentifier;
    return isSameApplication ? WindowExistence::exists : WindowExistence::terminated;
}

} // namespace kestrove
