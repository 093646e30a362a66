#pragma once

#include "Platform/X11/Connection.h"
#include "Platform/X11/RootSelection.h"

#include <cstdint>
#include <set>

namespace kestrove::x11 {

/// Events of every child of the root, whoever made it, selected as long as this lives, over lost
/// connections too. For what the server tells a window alone: that the focus or the pointer has
/// come into it. They come through the connection's `events`.
///
/// Thread: main. Lifetime: not longer than the connection.
class TopLevelSelection {
public:
    TopLevelSelection(Connection& connection, std::uint32_t mask);
    TopLevelSelection(const TopLevelSelection&) = delete;
    TopLevelSelection& operator=(const TopLevelSelection&) = delete;
    ~TopLevelSelection();

    [[nodiscard]] bool contains(xcb_window_t window) const { return m_windows.contains(window); }

private:
    void selectAll();
    void handle(const xcb_generic_event_t& event);
    void add(xcb_window_t window);
    void remove(xcb_window_t window);

    Connection& m_connection;
    std::uint32_t m_mask;
    // Before the children are asked for, so that none comes unnoticed in between.
    RootSelection m_root;
    std::set<xcb_window_t> m_windows;
    Subscription m_events;
    Subscription m_opened;
};

} // namespace kestrove::x11
