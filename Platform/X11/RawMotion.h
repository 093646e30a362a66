#pragma once

#include "Async/Signal.h"
#include "Platform/X11/Connection.h"

namespace kestrove::x11 {

/// Tells that the pointer has moved, whoever has grabbed it, from XInput 2 raw motion on the root
/// window. Selected only while somebody listens, and shared by everybody on the connection, because
/// a selection is one per client and window.
///
/// Raw motion has no position: who needs it asks for it. Told at most once for all the motion that
/// had arrived. Thread: main.
class RawMotion {
public:
    explicit RawMotion(Connection& connection);

    [[nodiscard]] Subscription subscribe(std::function<void()> moved);

private:
    void select();
    void onEvent(const xcb_generic_event_t& event);

    Connection& m_connection;
    Signal<> m_moved;
    int m_listeners = 0;
    bool m_hasMoved = false;
    std::shared_ptr<char> m_alive = std::make_shared<char>();
    Subscription m_events;
    Subscription m_drained;
    Subscription m_opened;
};

} // namespace kestrove::x11
