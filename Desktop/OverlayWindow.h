#pragma once

#include "Desktop/Geometry.h"

#include <cstdint>

namespace kestrove {

/// The window that marks what is shared: a green frame, 4 points wide, its outer corners rounded by
/// 8 points, drawn just inside the window's edges; the rest of the window is not there. It lies
/// above normal windows on every workspace, has no shadow, takes no input, is in no list that the
/// user switches windows by, and is on no capture of ours.
///
/// Thread: main.
class OverlayWindow {
public:
    OverlayWindow() = default;
    OverlayWindow(const OverlayWindow&) = delete;
    OverlayWindow& operator=(const OverlayWindow&) = delete;
    virtual ~OverlayWindow() = default;

    /// The number that the window server knows the window by, the same for its whole life. Below 1
    /// when it has none.
    [[nodiscard]] virtual std::int64_t windowNumber() const = 0;
    [[nodiscard]] virtual bool isVisible() const = 0;
    /// Points, screen coordinates. Not animated; the frame that it has already costs nothing.
    virtual void setFrame(const Rect& frame) = 0;
    /// Shows the window above all others of its level, whichever application is active; again when
    /// others have been put above it.
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
};

} // namespace kestrove
