#pragma once

#include "Async/Signal.h"
#include "Platform/X11/Connection.h"

namespace kestrove::x11 {

/// Tells that the keyboard's maps are others now: another layout, other modifiers, another
/// keyboard plugged in. Once for all that had arrived.
///
/// Thread: main. Lifetime: not longer than the connection.
class KeyboardChanges {
public:
    explicit KeyboardChanges(Connection& connection);

    Signal<> changed;

private:
    void set();
    void onEvent(const xcb_generic_event_t& event);

    Connection& m_connection;
    std::uint8_t m_firstEvent = 0;
    bool m_hasChanged = false;
    Subscription m_events;
    Subscription m_drained;
    Subscription m_opened;
};

} // namespace kestrove::x11
