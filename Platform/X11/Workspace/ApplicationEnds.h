#pragma once

#include "Async/Signal.h"
#include "Async/TaskScope.h"
#include "Desktop/Workspace.h"
#include "Platform/Linux/DescriptorSet.h"
#include "Platform/Linux/ProcessEnd.h"
#include "Platform/X11/RootSelection.h"
#include "Platform/X11/WindowIdentity/Applications.h"

#include <map>
#include <memory>
#include <set>
#include <vector>

namespace kestrove::x11 {

/// Follows the processes that own windows, or have owned one since this began, until each ends.
///
/// Nothing is asked again and again: new windows are noticed by the window manager's client list
/// and by maps of top levels, ends by the kernel's word. A process is followed only after one of
/// its windows was seen alive while the process was already held, so that the number of one that
/// has just gone cannot stand for its successor.
///
/// Thread: main. Lifetime: not longer than what it is given.
class ApplicationEnds {
public:
    ApplicationEnds(Connection& connection, DescriptorWatching& watching,
                    Applications& applications);

    Signal<RunningApplication> ended;

private:
    struct Followed {
        RunningApplication application;
        std::unique_ptr<ProcessEnd> end;
    };

    void handle(const xcb_generic_event_t& event);
    void lookSoon();
    void look();
    /// The windows that were not there at the last look.
    std::vector<ClientWindow> newWindows();
    void follow(ProcessID process);
    void onEnded(ProcessID process);

    Connection& m_connection;
    /// One for each process: a desktop has many, and hardly any ever ends.
    DescriptorSet m_processes;
    Applications& m_applications;
    RootSelection m_root;
    std::set<xcb_window_t> m_seenWindows;
    std::map<ProcessID, Followed> m_followed;
    bool m_isLookQueued = false;
    Subscription m_events;
    Subscription m_opened;
    TaskScope m_tasks;
};

} // namespace kestrove::x11
