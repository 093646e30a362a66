#pragma once

#include "Platform/X11/Capture/Region.h"

#include <xcb/render.h>

namespace kestrove::x11 {

/// Where a frame is painted: a picture, and where in it the frame's top left lies, in pixels.
struct PaintTarget {
    xcb_render_picture_t picture = XCB_NONE;
    int x = 0;
    int y = 0;
    /// That the picture is of; none where it is of a pixmap.
    xcb_window_t window = XCB_NONE;
};

/// What a frame consists of, as it is now. Regions are pixels of the frame. Thread: main.
class FramePainter {
public:
    FramePainter() = default;
    FramePainter(const FramePainter&) = delete;
    FramePainter& operator=(const FramePainter&) = delete;
    virtual ~FramePainter() = default;

    /// The part of `region` of which each pixel is painted once. Of the rest, unfinished states
    /// could be seen where it is painted.
    [[nodiscard]] virtual Region paintedAtOnce(const Region& region) const = 0;

    /// Sets the picture's clip.
    virtual void paint(const PaintTarget& target, const Region& region) = 0;
};

} // namespace kestrove::x11
