#pragma once

#include "Desktop/WindowServer.h"
#include "Platform/X11/Screens/MonitorLayout.h"

namespace kestrove::x11 {

/// The windows of the X server as `readClientList` and `readIdentities` tell them. The list is
/// absent while the connection is lost. The desktop's own windows (layer -1) are its desktop
/// elements.
class WindowServer final : public kestrove::WindowServer {
public:
    /// Both must outlive this.
    WindowServer(Connection& connection, const MonitorLayout& layout)
        : m_connection(connection)
        , m_layout(layout) {}

    std::optional<std::vector<WindowDescription>> windowList(WindowListOptions options) override;

private:
    Connection& m_connection;
    const MonitorLayout& m_layout;
};

} // namespace kestrove::x11
