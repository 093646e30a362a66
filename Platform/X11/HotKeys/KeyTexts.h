#pragma once

#include "Platform/X11/Connection.h"

#include <cstdint>
#include <string>

namespace kestrove::x11 {

/// What keys type, by the keyboard's present layout. For display only: a hot key is a place on the
/// keyboard, whatever the layout makes of it.
///
/// Thread: main. Lifetime: not longer than the connection.
class KeyTexts {
public:
    explicit KeyTexts(Connection& connection)
        : m_connection(connection) {}

    /// What the key of this key code types without modifiers, UTF-8; empty for a key that types
    /// nothing that can be shown, and while the server cannot be asked. Asks the server each time,
    /// so that a layout that was just chosen counts.
    [[nodiscard]] std::string characters(std::uint32_t keyCode) const;

private:
    Connection& m_connection;
};

} // namespace kestrove::x11
