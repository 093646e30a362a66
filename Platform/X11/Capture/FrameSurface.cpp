#include "Platform/X11/Capture/FrameSurface.h"

#include <utility>

namespace kestrove::x11 {

FrameSurface::FrameSurface(Connection& connection, const PictureFormats& formats, int width,
                           int height)
    : m_connection(connection)
    , m_width(width)
    , m_height(height)
    , m_pixmap(connection, connection.generateIdentifier())
    , m_picture(connection, connection.generateIdentifier()) {
    auto* const xcb = connection.get();
    connection.onError(xcb_create_pixmap(xcb, 24, m_pixmap.get(), connection.root(),
                                         static_cast<std::uint16_t>(width),
                                         static_cast<std::uint16_t>(height)),
                       [weak = std::weak_ptr(m_refused)] {
                           if (const auto refused = weak.lock())
                               refused->emit();
                       });
    // Scaling reads a little beyond the edges: the edge itself goes on there.
    const std::uint32_t repeat = XCB_RENDER_REPEAT_PAD;
    xcb_render_create_picture(xcb, m_picture.get(), m_pixmap.get(), formats.rgb24(),
                              XCB_RENDER_CP_REPEAT, &repeat);
    const xcb_rectangle_t all{0, 0, static_cast<std::uint16_t>(width),
                              static_cast<std::uint16_t>(height)};
    xcb_render_fill_rectangles(xcb, XCB_RENDER_PICT_OP_SRC, m_picture.get(), {0, 0, 0, 0xFFFF}, 1,
                               &all);
}

void FrameSurface::invalidate(FramePainter& painter, const Region& region) {
    m_painter = &painter;
    m_newer += region;
}

void FrameSurface::bringUpToDate(const Region& region) {
    const auto part = m_newer & region;
    if (part.isEmpty() || !m_painter || !isValid())
        return;
    m_newer -= part;
    m_painter->paint({m_picture.get()}, part);
}

void FrameSurface::draw(const PaintTarget& target, const Region& region) {
    const auto direct = m_painter ? m_painter->paintedAtOnce(region) : Region();
    if (!direct.isEmpty())
        m_painter->paint(target, direct);
    const auto rest = region - direct;
    if (rest.isEmpty())
        return;
    bringUpToDate(rest);
    const auto clip = rest.translated(target.x, target.y);
    const auto box = rest.extents();
    setClip(m_connection, target.picture, clip);
    xcb_render_composite(m_connection.get(), XCB_RENDER_PICT_OP_SRC, m_picture.get(), XCB_NONE,
                         target.picture, box.x, box.y, 0, 0,
                         static_cast<std::int16_t>(box.x + target.x),
                         static_cast<std::int16_t>(box.y + target.y), box.width, box.height);
}

void FrameSurface::detach() {
    bringUpToDate();
    forget();
}

void FrameSurface::forget() {
    m_painter = nullptr;
    m_newer.clear();
}

void setClip(Connection& connection, xcb_render_picture_t picture, const Region& clip) {
    const auto rectangles = clip.rectangles();
    xcb_render_set_picture_clip_rectangles(connection.get(), picture, 0, 0,
                                           static_cast<std::uint32_t>(rectangles.size()),
                                           rectangles.data());
}

} // namespace kestrove::x11
