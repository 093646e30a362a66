#pragma once

#include <cstdint>
#include <span>

#include <xcb/xcb.h>
#include <xcb/xcbext.h>

namespace kestrove::test {

/// Sends a request without reply for which libxcb has no function that works. `body` is what
/// follows the four bytes of opcodes and length, its size a multiple of four. The cookie is a
/// checked one.
xcb_void_cookie_t sendRawRequest(xcb_connection_t* connection, xcb_extension_t& extension,
                                 std::uint8_t opcode, std::span<const std::byte> body);

} // namespace kestrove::test
