#pragma once

#include <cstdlib>
#include <memory>

#include <xcb/xcb.h>

namespace kestrove::test {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

/// Owns what an xcb_..._reply function or xcb_request_check returns; null when there is none.
template <class T>
class Reply : public std::unique_ptr<T, FreeReply> {
public:
    explicit Reply(T* reply)
        : std::unique_ptr<T, FreeReply>(reply) {}
};

/// Returns when the server has done all that this connection has asked for.
inline void sync(xcb_connection_t* connection) {
    const Reply reply(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

} // namespace kestrove::test
