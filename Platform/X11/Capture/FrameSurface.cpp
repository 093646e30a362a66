#include "Platform/X11/Capture/FrameSurface.h"

namespace kestrove::x11 {

FrameSurface::FrameSurface(Connection& connection, const PictureFormats& formats, int width,
                           int height)
    : m_width(width)
    , m_height(height)
    , m_pixmap(connection, connection.generateIdentifier())
    , m_picture(connection, connection.generateIdentifier()) {
    auto* const xcb = connection.get();
    xcb_create_pixmap(xcb, 24, m_pixmap.get(), connection.root(), static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height));
    // Scaling reads a little beyond the edges: the edge itself goes on there.
    const std::uint32_t repeat = XCB_RENDER_REPEAT_PAD;
    xcb_render_create_picture(xcb, m_picture.get(), m_pixmap.get(), formats.rgb24(),
                              XCB_RENDER_CP_REPEAT, &repeat);
    const xcb_rectangle_t all{0, 0, static_cast<std::uint16_t>(width),
                              static_cast<std::uint16_t>(height)};
    xcb_render_fill_rectangles(xcb, XCB_RENDER_PICT_OP_SRC, m_picture.get(), {0, 0, 0, 0xFFFF}, 1,
                               &all);
}

void FrameSurface::setClip(Connection& connection, const Region& clip) const {
    const auto rectangles = clip.rectangles();
    xcb_render_set_picture_clip_rectangles(connection.get(), m_picture.get(), 0, 0,
                                           static_cast<std::uint32_t>(rectangles.size()),
                                           rectangles.data());
}

} // namespace kestrove::x11
