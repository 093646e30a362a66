#include "Platform/X11/WindowServer.h"

#include "Platform/X11/Screens/Coordinates.h"
#include "Platform/X11/WindowIdentity/WindowIdentity.h"
#include "Platform/X11/WindowIdentity/WindowLayer.h"

namespace kestrove::x11 {

std::optional<std::vector<WindowDescription>> WindowServer::windowList(WindowListOptions options) {
    if (!m_connection.isOpen())
        return std::nullopt;
    const auto clients = readClientList(m_connection);
    if (!clients)
        return std::nullopt;
    const Coordinates coordinates(m_layout.monitors());
    std::vector<WindowDescription> list;
    for (const auto& window : readIdentities(m_connection, *clients)) {
        if (has(options, WindowListOptions::onScreenOnly) && !window.isOnScreen)
            continue;
        if (has(options, WindowListOptions::excludeDesktopElements) &&
            window.layer == layer::desktop)
            continue;
        WindowDescription description;
        description.windowNumber = window.windowID;
        description.ownerProcessID = window.processID;
        description.layer = window.layer;
        description.alpha = window.alpha;
        description.bounds = coordinates.windowServerRect(window.rootBounds);
        list.push_back(description);
    }
    return list;
}

} // namespace kestrove::x11
