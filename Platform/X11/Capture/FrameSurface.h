#pragma once

#include "Platform/X11/Capture/PictureFormats.h"
#include "Platform/X11/Capture/Region.h"
#include "Platform/X11/Capture/ServerResource.h"

namespace kestrove::x11 {

/// The pixmap in the server that a stream's frame lives in: 24 planes, black at first, the size of
/// the source in pixels. Changed parts are painted into it; it is the same for all frames of one
/// size.
///
/// Thread: main, also for letting go of it.
class FrameSurface {
public:
    FrameSurface(Connection& connection, const PictureFormats& formats, int width, int height);

    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    [[nodiscard]] xcb_pixmap_t pixmap() const { return m_pixmap.get(); }
    [[nodiscard]] xcb_render_picture_t picture() const { return m_picture.get(); }
    [[nodiscard]] Region bounds() const { return {0, 0, m_width, m_height}; }
    /// Whether the server still has it: false once the connection it was made on is lost.
    [[nodiscard]] bool isValid() const { return static_cast<bool>(m_pixmap); }

    /// Limits what is painted into `picture` from now on.
    void setClip(Connection& connection, const Region& clip) const;

private:
    int m_width;
    int m_height;
    Pixmap m_pixmap;
    Picture m_picture;
};

} // namespace kestrove::x11
