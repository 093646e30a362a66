#pragma once

#include "Async/Signal.h"
#include "Async/TaskScope.h"
#include "Desktop/Workspace.h"

#include <vector>

namespace kestrove {

class SimulatedDesktop;
struct SimulatedApplicationProcess;

/// Applications and session of a simulated desktop.
class SimulatedWorkspace final : public Workspace {
public:
    explicit SimulatedWorkspace(SimulatedDesktop& desktop);

    std::optional<RunningApplication> frontmostApplication() override;
    std::optional<RunningApplication> runningApplication(ProcessID process) override;
    Subscription onApplicationActivated(ApplicationCallback callback) override;
    Subscription onApplicationTerminated(ApplicationCallback callback) override;
    Subscription onSessionResignedActive(Callback callback) override;
    Subscription onSessionBecameActive(Callback callback) override;
    Subscription onScreensSlept(Callback callback) override;
    Subscription onScreensWoke(Callback callback) override;

private:
    void announceLater(const Signal<RunningApplication>& signal,
                       const SimulatedApplicationProcess& application);
    void announceLater(const Signal<>& signal);

    SimulatedDesktop& m_desktop;
    Signal<RunningApplication> m_activated;
    Signal<RunningApplication> m_terminated;
    Signal<> m_resigned;
    Signal<> m_becameActive;
    Signal<> m_slept;
    Signal<> m_woke;
    std::vector<Subscription> m_worldChanges;
    TaskScope m_scope;
};

} // namespace kestrove
