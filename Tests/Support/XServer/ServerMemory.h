#pragma once

#include "Tests/Support/XServer/XServer.h"

#include <sys/resource.h>

namespace kestrove::test {

/// Takes an X server the memory for large pictures, and gives it back at the end at the latest.
class ServerMemory {
public:
    explicit ServerMemory(XServer& server)
        : m_server(server) {}
    ~ServerMemory() { free(); }
    ServerMemory(const ServerMemory&) = delete;
    ServerMemory& operator=(const ServerMemory&) = delete;

    /// From now on the server gets `spare` bytes more than it has, and no picture that is larger.
    void limit(rlim_t spare);
    void free();

    /// As a compositor does: the server has the window's own picture in memory. A server that has
    /// no memory for that one crashes by itself.
    void keepPicture(xcb_window_t window);

private:
    [[nodiscard]] pid_t process() const { return m_server.process().processIdentifier(); }
    [[nodiscard]] rlim_t addressSpace() const;
    void setLimit(rlim_t bytes) const;

    XServer& m_server;
};

} // namespace kestrove::test
