#pragma once

#include "Desktop/Identifiers.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/WindowIdentity/ClientList.h"

#include <map>
#include <optional>
#include <span>
#include <xcb/res.h>

namespace kestrove::x11 {

/// The processes at the other end of the server's connections, as the server itself knows them: for
/// windows that do not say whose they are. Of a program that reaches the server from another
/// machine through a local one, it is the local one, with which its windows end.
///
/// All windows are asked for with one request when it is made, and the answer is waited for when it
/// is heard, so that it costs no wait of its own among other questions.
///
/// Thread: main.
class ClientProcesses {
public:
    ClientProcesses(Connection& connection, std::span<const ClientWindow> windows);

    /// Once. Without an answer, as of a server that cannot tell, no process is known.
    void hear();

    /// The running process whose connection has made the window. Absent when the server knows none,
    /// as for connections over a network, or when it is a server of another machine, or of another
    /// container, where the numbers mean other processes.
    [[nodiscard]] std::optional<ProcessID> of(xcb_window_t window) const;

private:
    /// What the identifiers of all that a connection has made begin with.
    [[nodiscard]] std::uint32_t client(xcb_window_t window) const;
    [[nodiscard]] std::uint32_t ourClient() const;

    Connection& m_connection;
    std::optional<xcb_res_query_client_ids_cookie_t> m_asked;
    std::map<std::uint32_t, ProcessID> m_processes;
};

} // namespace kestrove::x11
