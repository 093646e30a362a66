#include "Platform/X11/WindowIdentity/ClientProcesses.h"

#include "Platform/Linux/Processes.h"

#include <set>
#include <unistd.h>
#include <vector>

namespace kestrove::x11 {

ClientProcesses::ClientProcesses(Connection& connection, std::span<const ClientWindow> windows)
    : m_connection(connection) {
    if (!connection.extensions().tellsProcesses)
        return;
    std::set<std::uint32_t> clients{ourClient()};
    for (const auto& window : windows)
        clients.insert(client(window.window));
    // The server's own windows; as a question, zero would mean all connections.
    clients.erase(0);
    std::vector<xcb_res_client_id_spec_t> questions;
    questions.reserve(clients.size());
    for (const auto each : clients)
        questions.push_back({each, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID});
    m_asked = xcb_res_query_client_ids(
        connection.get(), static_cast<std::uint32_t>(questions.size()), questions.data());
}

void ClientProcesses::hear() {
    if (!m_asked)
        return;
    const auto answer = m_connection.reply(xcb_res_query_client_ids_reply, *m_asked);
    if (!answer)
        return;
    auto each = xcb_res_query_client_ids_ids_iterator(answer.get());
    for (; each.rem > 0; xcb_res_client_id_value_next(&each)) {
        if (each.data->spec.mask != XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID ||
            xcb_res_client_id_value_value_length(each.data) != 1)
            continue;
        const auto process = static_cast<ProcessID>(*xcb_res_client_id_value_value(each.data));
        if (process > 0)
            m_processes.emplace(each.data->spec.client, process);
    }
    // A server that numbers processes as we do has our own number.
    const auto ours = m_processes.find(ourClient());
    if (ours == m_processes.end() || ours->second != getpid())
        m_processes.clear();
}

std::optional<ProcessID> ClientProcesses::of(xcb_window_t window) const {
    const auto found = m_processes.find(client(window));
    // It may have opened the connection for a child and have ended.
    if (found == m_processes.end() || !processStartTime(found->second))
        return std::nullopt;
    return found->second;
}

std::uint32_t ClientProcesses::client(xcb_window_t window) const {
    return window & ~xcb_get_setup(m_connection.get())->resource_id_mask;
}

std::uint32_t ClientProcesses::ourClient() const {
    return xcb_get_setup(m_connection.get())->resource_id_base;
}

} // namespace kestrove::x11
