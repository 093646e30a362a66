#include "Platform/X11/Workspace/ApplicationEnds.h"

#include "Platform/Linux/Processes.h"

#include <utility>

namespace kestrove::x11 {

ApplicationEnds::ApplicationEnds(Connection& connection, DescriptorWatching& watching,
                                 Applications& applications)
    : m_connection(connection)
    , m_processes(watching)
    , m_applications(applications)
    , m_root(connection, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY)
    , m_tasks(connection.loop()) {
    m_events =
        connection.events.subscribe([this](const xcb_generic_event_t& event) { handle(event); });
    m_opened = connection.opened.subscribe([this] {
        m_seenWindows.clear();
        lookSoon();
    });
    look();
}

void ApplicationEnds::handle(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7F) == XCB_MAP_NOTIFY ||
        m_root.isChangeOf(event, "_NET_CLIENT_LIST"))
        lookSoon();
}

void ApplicationEnds::lookSoon() {
    if (m_isLookQueued)
        return;
    m_isLookQueued = true;
    m_tasks.post([this] {
        m_isLookQueued = false;
        look();
    });
}

void ApplicationEnds::look() {
    const auto windows = newWindows();
    if (windows.empty())
        return;
    const auto met = readIdentities(m_connection, windows);
    m_applications.meet(met);
    std::set<ProcessID> held;
    for (const auto& window : met) {
        if (window.processID && !m_followed.contains(*window.processID)) {
            held.insert(*window.processID);
            follow(*window.processID);
        }
    }
    if (held.empty())
        return;
    for (const auto& window : readIdentities(m_connection, windows)) {
        if (window.processID)
            held.erase(*window.processID);
    }
    for (const auto process : held)
        m_followed.erase(process);
}

std::vector<ClientWindow> ApplicationEnds::newWindows() {
    const auto windows = readClientList(m_connection).value_or(std::vector<ClientWindow>());
    std::vector<ClientWindow> fresh;
    std::set<xcb_window_t> present;
    for (const auto& each : windows) {
        present.insert(each.window);
        if (!m_seenWindows.contains(each.window))
            fresh.push_back(each);
    }
    m_seenWindows = std::move(present);
    return fresh;
}

void ApplicationEnds::follow(ProcessID process) {
    // A zombie has ended before, though its child may still show its windows.
    if (!processStartTime(process))
        return;
    auto end = ProcessEnd::watch(m_processes, process, [this, process] { onEnded(process); });
    if (!end)
        return;
    RunningApplication application{process, m_applications.bundleIdentifier(process)};
    m_followed.insert_or_assign(process, Followed{std::move(application), std::move(end)});
}

void ApplicationEnds::onEnded(ProcessID process) {
    const auto followed = m_followed.extract(process);
    // Another process may have got the number and opened windows in the meantime.
    m_seenWindows.clear();
    lookSoon();
    ended.emit(followed.mapped().application);
}

} // namespace kestrove::x11
