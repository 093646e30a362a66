#pragma once

#include "Platform/X11/Connection.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrove::x11 {

/// Reading window properties. Many are asked for first and heard afterwards, so that all of them
/// together cost one wait for the server.

[[nodiscard]] xcb_get_property_cookie_t askProperty(Connection& connection, xcb_window_t window,
                                                    std::string_view name);

/// A property made of 32-bit items; empty when it is missing or made of something else.
[[nodiscard]] std::vector<std::uint32_t> hearWords(Connection& connection,
                                                   xcb_get_property_cookie_t asked);

/// The first of its 32-bit items.
[[nodiscard]] std::optional<std::uint32_t> hearWord(Connection& connection,
                                                    xcb_get_property_cookie_t asked);

/// A property made of bytes, as it is; absent when it is missing or made of something else.
struct ByteProperty {
    xcb_atom_t type = XCB_ATOM_NONE;
    std::string bytes;
};
[[nodiscard]] std::optional<ByteProperty> hearBytes(Connection& connection,
                                                    xcb_get_property_cookie_t asked);

/// One property of the root window.
[[nodiscard]] std::vector<std::uint32_t> rootWords(Connection& connection, std::string_view name);

} // namespace kestrove::x11
