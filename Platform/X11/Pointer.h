#pragma once

#include "Async/Signal.h"
#include "Desktop/Pointer.h"
#include "Platform/X11/RawMotion.h"
#include "Platform/X11/Screens/MonitorLayout.h"

#include <functional>
#include <memory>
#include <optional>

namespace kestrove::x11 {

/// The pointer by raw motion, which no grab keeps from us, and one question for its position for
/// all the motion that had arrived.
class Pointer final : public kestrove::Pointer {
public:
    /// All must outlive this.
    Pointer(Connection& connection, const MonitorLayout& layout, RawMotion& motion);

    /// The last known one while the connection is lost, or while the pointer is on another X
    /// screen.
    Point location() override;
    Subscription addGlobalMovedMonitor(std::function<void()> moved) override;
    Subscription addLocalMovedMonitor(std::function<void()> moved) override;

private:
    struct Position {
        int x = 0;
        int y = 0;
        /// The child under the pointer, none over the window itself.
        xcb_window_t child = XCB_WINDOW_NONE;
    };

    Subscription addMonitor(Signal<>& audience, std::function<void()> moved);
    void watchWhileNeeded();
    std::optional<Position> ask(xcb_window_t window);
    void onMoved();
    /// Whether a window of this process is under the pointer, inside this child of the root.
    bool isOurs(xcb_window_t topLevel);
    bool lookForOurs(xcb_window_t topLevel);

    Connection& m_connection;
    const MonitorLayout& m_layout;
    RawMotion& m_motion;
    Position m_last;
    /// Where the monitors were last told of.
    std::optional<Position> m_told;
    /// The last top level that was looked into: the pointer rests long on each.
    xcb_window_t m_judgedTopLevel = XCB_WINDOW_NONE;
    bool m_isJudgedOurs = false;
    Signal<> m_movedGlobally;
    Signal<> m_movedLocally;
    std::shared_ptr<char> m_alive = std::make_shared<char>();
    Subscription m_moved;
    Subscription m_opened;
};

} // namespace kestrove::x11
