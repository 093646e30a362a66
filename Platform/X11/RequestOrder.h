#pragma once

#include <cstdint>

namespace kestrove::x11 {

/// Whether the server had come to `request` when it told the event of the number `told`: both are
/// sequence numbers of one connection, which begin anew after the largest.
///
/// An event from before a reply is older than the reply, and may be told after it: of what the
/// reply says, it is no news. Numbers half the range apart are taken for the opposite: forget a
/// request once something since was told.
[[nodiscard]] inline bool isSince(std::uint32_t told, std::uint32_t request) {
    return static_cast<std::int32_t>(told - request) >= 0;
}

} // namespace kestrove::x11
