#include "Platform/X11/Screens/Screens.h"

#include "Platform/X11/Screens/Coordinates.h"
#include "Platform/X11/Screens/WorkArea.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace kestrove::x11 {
namespace {

/// A change of any of these may be one of the usable area.
constexpr auto areaProperties = std::to_array<std::string_view>(
    {"_NET_WORKAREA", "_NET_CLIENT_LIST", "_NET_CURRENT_DESKTOP", "_GTK_WORKAREAS_D0"});

} // namespace

Screens::Screens(Connection& connection, MonitorLayout& layout)
    : m_connection(connection)
    , m_layout(layout)
    , m_root(connection, XCB_EVENT_MASK_PROPERTY_CHANGE)
    , m_tasks(connection.loop()) {
    m_events =
        connection.events.subscribe([this](const xcb_generic_event_t& event) { handle(event); });
    m_layoutChanged = layout.changed.subscribe([this] { invalidate(); });
    read();
    m_toldScreens = m_screens;
}

std::vector<Screen> Screens::screens() {
    if (m_isStale)
        read();
    return m_screens;
}

Subscription Screens::onChanged(std::function<void()> callback) {
    return m_changed.subscribe(std::move(callback));
}

void Screens::handle(const xcb_generic_event_t& event) {
    const auto isChange = [&](std::string_view name) { return m_root.isChangeOf(event, name); };
    if (std::ranges::any_of(areaProperties, isChange))
        invalidate();
}

void Screens::invalidate() {
    if (m_isStale)
        return;
    m_isStale = true;
    m_tasks.post([this] { tell(); });
}

void Screens::read() {
    m_isStale = false;
    m_screens.clear();
    const auto& monitors = m_layout.monitors();
    if (monitors.empty())
        return;
    const Coordinates coordinates(monitors);
    const auto areas = readVisibleAreas(m_connection, monitors);
    for (std::size_t i = 0; i < monitors.size(); ++i) {
        Screen screen;
        screen.frame = coordinates.screenRect(toRect(monitors[i].rectangle));
        screen.visibleFrame = coordinates.screenRect(areas[i]);
        screen.displayID = monitors[i].id;
        screen.localizedName = monitors[i].name;
        screen.isMain = monitors[i].isMain;
        m_screens.push_back(std::move(screen));
    }
}

void Screens::tell() {
    if (m_isStale)
        read();
    if (m_screens == m_toldScreens)
        return;
    m_toldScreens = m_screens;
    m_changed.emit();
}

} // namespace kestrove::x11
