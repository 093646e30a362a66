#pragma once

#include "Desktop/WindowServer.h"

namespace kestrove {

class SimulatedDesktop;

/// The windows of a simulated desktop as a window list.
class SimulatedWindowServer final : public WindowServer {
public:
    explicit SimulatedWindowServer(SimulatedDesktop& desktop)
        : m_desktop(desktop) {}

    std::optional<std::vector<WindowDescription>> windowList(WindowListOptions options) override;

    [[nodiscard]] int callCount() const { return m_callCount; }

private:
    SimulatedDesktop& m_desktop;
    int m_callCount = 0;
};

} // namespace kestrove
