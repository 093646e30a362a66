#include "Platform/X11/Pointer.h"

#include "Platform/X11/Screens/Coordinates.h"
#include "Platform/X11/WindowIdentity/WindowIdentity.h"

#include <array>
#include <unistd.h>
#include <utility>

namespace kestrove::x11 {
namespace {

/// Deeper than window managers nest (frame, decoration, client).
constexpr int deepestNesting = 16;

} // namespace

Pointer::Pointer(Connection& connection, const MonitorLayout& layout, RawMotion& motion)
    : m_connection(connection)
    , m_layout(layout)
    , m_motion(motion)
    , m_opened(connection.opened.subscribe([this] { m_judgedTopLevel = XCB_WINDOW_NONE; })) {}

Point Pointer::location() {
    m_last = ask(m_connection.root()).value_or(m_last);
    return Coordinates(m_layout.monitors()).screenPoint(m_last.x, m_last.y);
}

Subscription Pointer::addGlobalMovedMonitor(std::function<void()> moved) {
    return addMonitor(m_movedGlobally, std::move(moved));
}

Subscription Pointer::addLocalMovedMonitor(std::function<void()> moved) {
    return addMonitor(m_movedLocally, std::move(moved));
}

Subscription Pointer::addMonitor(Signal<>& audience, std::function<void()> moved) {
    auto inner = std::make_shared<Subscription>(audience.subscribe(std::move(moved)));
    watchWhileNeeded();
    return Subscription([this, inner, alive = std::weak_ptr(m_alive)] {
        inner->cancel();
        if (alive.lock())
            watchWhileNeeded();
    });
}

void Pointer::watchWhileNeeded() {
    const bool isNeeded = m_movedGlobally.hasSubscribers() || m_movedLocally.hasSubscribers();
    if (isNeeded == m_moved.isActive())
        return;
    m_told.reset();
    m_moved.cancel();
    if (isNeeded)
        m_moved = m_motion.subscribe([this] { onMoved(); });
}

std::optional<Pointer::Position> Pointer::ask(xcb_window_t window) {
    const auto answer =
        m_connection.reply(xcb_query_pointer_reply, xcb_query_pointer(m_connection.get(), window));
    if (!answer || !answer->same_screen)
        return std::nullopt;
    return Position{answer->root_x, answer->root_y, answer->child};
}

void Pointer::onMoved() {
    const auto position = ask(m_connection.root());
    if (!position)
        return;
    // A mouse that pushes against an edge moves, the pointer does not.
    const bool isSame = m_told && m_told->x == position->x && m_told->y == position->y;
    m_told = position;
    if (isSame)
        return;
    if (isOurs(position->child))
        m_movedLocally.emit();
    else
        m_movedGlobally.emit();
}

bool Pointer::isOurs(xcb_window_t topLevel) {
    if (topLevel == XCB_WINDOW_NONE)
        return false;
    if (topLevel != m_judgedTopLevel) {
        m_isJudgedOurs = lookForOurs(topLevel);
        m_judgedTopLevel = topLevel;
    }
    return m_isJudgedOurs;
}

bool Pointer::lookForOurs(xcb_window_t topLevel) {
    // A frame is its window manager's; whose window it holds shows further in.
    auto window = topLevel;
    for (int level = 0; level < deepestNesting; ++level) {
        const auto client = std::to_array<ClientWindow>({{window, topLevel}});
        const auto identities = readIdentities(m_connection, client);
        if (identities.empty())
            return false;
        if (identities.front().processID == getpid())
            return true;
        const auto inside = ask(window);
        if (!inside || inside->child == XCB_WINDOW_NONE)
            return false;
        window = inside->child;
    }
    return false;
}

} // namespace kestrove::x11
