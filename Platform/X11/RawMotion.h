#pragma once

#include "Async/Signal.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/TopLevelSelection.h"

#include <functional>
#include <memory>
#include <optional>

namespace kestrove::x11 {

/// Tells that the pointer has moved, whoever has grabbed it, from XInput 2 raw motion on the root
/// window. Selected only while somebody listens, and shared by everybody on the connection, because
/// a selection is one per client and window.
///
/// A program that puts the pointer elsewhere makes no motion; it is told where that takes the
/// pointer out of a top-level window or into one. What is put elsewhere within one window, or on
/// the bare root, is noticed at the next motion: nothing tells of it, and asking again and again
/// would keep the machine awake.
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
    std::optional<TopLevelSelection> m_crossings;
    bool m_hasMoved = false;
    std::shared_ptr<char> m_alive = std::make_shared<char>();
    Subscription m_events;
    Subscription m_drained;
    Subscription m_opened;
};

} // namespace kestrove::x11
