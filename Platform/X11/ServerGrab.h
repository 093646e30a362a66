#pragma once

#include "Platform/X11/Connection.h"

namespace kestrove::x11 {

/// While it lives, the server listens to nobody but us: what is sent meanwhile is one step to
/// everybody else. Every other program stands still that long, so nothing is waited for meanwhile;
/// the few requests of the step then reach the server in one write.
///
/// Thread: main.
class ServerGrab {
public:
    explicit ServerGrab(Connection& connection)
        : m_connection(connection.get()) {
        xcb_grab_server(m_connection);
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;
    ~ServerGrab() { xcb_ungrab_server(m_connection); }

private:
    xcb_connection_t* m_connection;
};

} // namespace kestrove::x11
