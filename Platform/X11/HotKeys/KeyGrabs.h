#pragma once

#include "Platform/X11/Connection.h"

#include <cstdint>
#include <set>

namespace kestrove::x11 {

/// Passive grabs of keys on the root window, each of both kinds that X has: programs that use the
/// one kind are not told of what others have grabbed by the other, so a key is ours only when we
/// have it by both. The newer kind tells us of presses, and which of them are repetitions; the
/// older one only keeps the key for us.
///
/// Thread: main. Lifetime: not longer than the connection.
class KeyGrabs {
public:
    explicit KeyGrabs(Connection& connection)
        : m_connection(connection) {}

    /// Grabs the key in these states of the modifiers; those of them that we have now.
    [[nodiscard]] std::set<std::uint16_t> grab(xcb_keycode_t code,
                                               const std::set<std::uint16_t>& states);
    /// When this returns the key is free for others, and for us.
    void release(xcb_keycode_t code, const std::set<std::uint16_t>& states);

private:
    [[nodiscard]] std::set<std::uint16_t> grabOld(xcb_keycode_t code,
                                                  const std::set<std::uint16_t>& states);
    [[nodiscard]] std::set<std::uint16_t> grabNew(xcb_keycode_t code,
                                                  const std::set<std::uint16_t>& states);
    void releaseOld(xcb_keycode_t code, const std::set<std::uint16_t>& states);

    Connection& m_connection;
};

} // namespace kestrove::x11
