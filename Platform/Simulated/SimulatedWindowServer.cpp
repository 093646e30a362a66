#include "Platform/Simulated/SimulatedWindowServer.h"

#include "Platform/Simulated/SimulatedDesktop.h"

namespace kestrove {

namespace {

template <class Value>
std::optional<Value> unlessLeftOut(const SimulatedWindow& window, SimulatedWindowField field,
                                   Value value) {
    return window.leftOut.contains(field) ? std::nullopt : std::optional<Value>(value);
}

WindowDescription describe(const SimulatedWindow& window) {
    using Field = SimulatedWindowField;
    WindowDescription row;
    row.windowNumber = unlessLeftOut(window, Field::number, window.windowID);
    if (window.processID != 0)
        row.ownerProcessID = unlessLeftOut(window, Field::owner, window.processID);
    row.layer = unlessLeftOut(window, Field::layer, window.layer);
    row.alpha = unlessLeftOut(window, Field::alpha, window.alpha);
    row.bounds = unlessLeftOut(window, Field::bounds, window.frame);
    return row;
}

} // namespace

std::optional<std::vector<WindowDescription>>
SimulatedWindowServer::windowList(WindowListOptions options) {
    m_desktop.requireMainThread("windowList");
    ++m_callCount;
    if (!m_desktop.isWindowListReadable())
        return std::nullopt;
    std::vector<WindowDescription> rows;
    for (const auto& window : m_desktop.windows()) {
        if (has(options, WindowListOptions::onScreenOnly) && !window.isOnScreen)
            continue;
        if (has(options, WindowListOptions::excludeDesktopElements) && window.isDesktopElement)
            continue;
        rows.push_back(describe(window));
    }
    return rows;
}

} // namespace kestrove
