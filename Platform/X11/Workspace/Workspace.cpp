#include "Platform/X11/Workspace/Workspace.h"

#include "Platform/Linux/Processes.h"

#include <array>
#include <utility>

namespace kestrove::x11 {
namespace {

/// Grabs take the focus away for a moment and give it back: that is no change.
bool isFocusIn(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7F) != XCB_FOCUS_IN)
        return false;
    const auto mode = reinterpret_cast<const xcb_focus_in_event_t&>(event).mode;
    return mode == XCB_NOTIFY_MODE_NORMAL || mode == XCB_NOTIFY_MODE_WHILE_GRABBED;
}

bool isMap(const xcb_generic_event_t& event) {
    return (event.response_type & 0x7F) == XCB_MAP_NOTIFY;
}

} // namespace

Workspace::Workspace(Connection& connection, DescriptorWatching& watching,
                     Applications& applications, SessionSignals& session)
    : m_connection(connection)
    , m_watching(watching)
    , m_applications(applications)
    , m_session(session)
    , m_root(connection, XCB_EVENT_MASK_PROPERTY_CHANGE)
    , m_focus(connection, XCB_EVENT_MASK_FOCUS_CHANGE)
    , m_tasks(connection.loop()) {
    m_events =
        connection.events.subscribe([this](const xcb_generic_event_t& event) { handle(event); });
    m_opened = connection.opened.subscribe([this] { lookSoon(); });
    m_frontmost = readFrontmost();
    m_isNobodyInFront = !m_frontmost;
}

std::optional<RunningApplication> Workspace::frontmostApplication() {
    auto frontmost = readFrontmost();
    if (!frontmost)
        m_frontmost.reset();
    return frontmost;
}

std::optional<RunningApplication> Workspace::readFrontmost() {
    const auto active = readActiveWindow(m_connection);
    if (active == XCB_WINDOW_NONE)
        return std::nullopt;
    const auto client = std::to_array<ClientWindow>({{active, active}});
    const auto identities = readIdentities(m_connection, client);
    if (identities.empty() || !identities.front().processID)
        return std::nullopt;
    return runningApplication(*identities.front().processID);
}

std::optional<RunningApplication> Workspace::runningApplication(ProcessID process) {
    if (!processStartTime(process))
        return std::nullopt;
    if (!m_applications.bundleIdentifier(process)) {
        const auto windows = readClientList(m_connection).value_or(std::vector<ClientWindow>());
        m_applications.meet(readIdentities(m_connection, windows));
    }
    return RunningApplication{process, m_applications.bundleIdentifier(process)};
}

Subscription Workspace::onApplicationActivated(ApplicationCallback callback) {
    return m_activated.subscribe(std::move(callback));
}

Subscription Workspace::onApplicationTerminated(ApplicationCallback callback) {
    if (!m_ends)
        m_ends = std::make_unique<ApplicationEnds>(m_connection, m_watching, m_applications);
    return m_ends->ended.subscribe(std::move(callback));
}

Subscription Workspace::onSessionResignedActive(Callback callback) {
    return m_session.resigned.subscribe(std::move(callback));
}

Subscription Workspace::onSessionBecameActive(Callback callback) {
    return m_session.becameActive.subscribe(std::move(callback));
}

Subscription Workspace::onScreensSlept(Callback callback) {
    return m_session.slept.subscribe(std::move(callback));
}

Subscription Workspace::onScreensWoke(Callback callback) {
    return m_session.woke.subscribe(std::move(callback));
}

void Workspace::handle(const xcb_generic_event_t& event) {
    if (m_root.isChangeOf(event, "_NET_ACTIVE_WINDOW") ||
        m_root.isChangeOf(event, "_NET_CLIENT_LIST") || isFocusIn(event) ||
        (m_isNobodyInFront && isMap(event)))
        lookSoon();
}

void Workspace::lookSoon() {
    if (m_isLookQueued)
        return;
    m_isLookQueued = true;
    m_tasks.post([this] {
        m_isLookQueued = false;
        look();
    });
}

void Workspace::look() {
    const auto frontmost = readFrontmost();
    // A window manager may name the active window before it can be seen.
    m_isNobodyInFront = !frontmost;
    if (!frontmost || frontmost == m_frontmost)
        return;
    m_frontmost = frontmost;
    m_activated.emit(*frontmost);
}

} // namespace kestrove::x11
