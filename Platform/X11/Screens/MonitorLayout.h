#pragma once

#include "Async/Signal.h"
#include "Async/Subscription.h"
#include "Desktop/Identifiers.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/RootSelection.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// One RandR monitor: a display as people see it, whether or not an output is behind it.
struct Monitor {
    DisplayID id = 0;
    /// As people know it: the name in the display's EDID, else the monitor's own (the connector's).
    std::string name;
    /// Pixels of the root window. Never empty.
    xcb_rectangle_t rectangle{};
    /// The primary monitor, else the first. True for exactly one of a list that is not empty.
    bool isMain = false;
};

/// The monitors now, the main one first, the rest in the server's own order. Empty when there is
/// none or the connection is lost.
///
/// An identifier is a hash of the monitor's own name (which is its connector's, unless the user has
/// made monitors of his own) and the EDID of the display behind it, where there is one. A saved
/// choice therefore survives a restart, and means another display once another one is plugged in
/// there. It is never 0 and unique in the list.
///
/// Waits for the server, a constant number of times.
[[nodiscard]] std::vector<Monitor> readMonitors(Connection& connection);

/// What `readMonitors` makes an identifier of: FNV-1a, 32 bit.
[[nodiscard]] DisplayID displayIdentifier(std::string_view identity);

/// The list of monitors, kept up to date.
///
/// Thread: main. Lifetime: not longer than the connection. The list is empty while the connection
/// is lost.
class MonitorLayout {
public:
    explicit MonitorLayout(Connection& connection);
    MonitorLayout(const MonitorLayout&) = delete;
    MonitorLayout& operator=(const MonitorLayout&) = delete;

    [[nodiscard]] const std::vector<Monitor>& monitors() const { return m_monitors; }
    /// Null when there is no such monitor (any more). Valid until the next change.
    [[nodiscard]] const Monitor* find(DisplayID display) const;

    /// The list became another one, whatever the reason; once for a batch of events.
    Signal<> changed;

private:
    void listen();
    void handle(const xcb_generic_event_t& event);
    void refresh();

    Connection& m_connection;
    // Monitors that are made and deleted by request are told of only by a configuration of the
    // root.
    RootSelection m_structure;
    std::vector<Monitor> m_monitors;
    bool m_isStale = false;
    Subscription m_events;
    Subscription m_drained;
    Subscription m_lost;
    Subscription m_opened;
};

} // namespace kestrove::x11
