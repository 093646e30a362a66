#pragma once

#include "Desktop/OverlayWindow.h"
#include "Platform/Simulated/SimulatedDesktop.h"

namespace kestrove::simulation {

/// The green frame: a window of ours above the others, which a capture could see.
class SimulatedOverlayWindow final : public OverlayWindow {
public:
    explicit SimulatedOverlayWindow(SimulatedDesktop& desktop);
    ~SimulatedOverlayWindow() override;

    std::int64_t windowNumber() const override { return m_window; }
    bool isVisible() const override;
    void setFrame(const Rect& frame) override;
    void orderFrontRegardless() override;
    void orderOut() override;

    /// Points, screen coordinates.
    [[nodiscard]] const Rect& frame() const { return m_frame; }

private:
    void setOnScreen(bool isOnScreen);

    SimulatedDesktop& m_desktop;
    Rect m_frame;
    WindowID m_window;
};

} // namespace kestrove::simulation
