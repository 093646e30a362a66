#include "Platform/X11/Capture/FrameScaler.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace kestrove::x11 {
namespace {

/// RENDER's numbers have 16 bits behind the point.
xcb_render_fixed_t fixedPoint(double value) {
    return static_cast<xcb_render_fixed_t>(std::lround(value * 65536));
}

/// The smallest region that holds `region` when both axes are halved.
Region halved(const Region& region) {
    Region result;
    for (const auto& box : region.boxes()) {
        const int x = box.x1 / 2;
        const int y = box.y1 / 2;
        result += Region(x, y, (box.x2 + 1) / 2 - x, (box.y2 + 1) / 2 - y);
    }
    return result;
}

} // namespace

FrameScaler::FrameScaler(Connection& connection, const PictureFormats& formats,
                         std::shared_ptr<FrameSurface> surface, int width, int height)
    : m_connection(connection)
    , m_surface(std::move(surface))
    , m_picture(connection, connection.generateIdentifier()) {
    const std::uint32_t repeat = XCB_RENDER_REPEAT_PAD;
    xcb_render_create_picture(connection.get(), m_picture.get(), m_surface->pixmap(),
                              formats.rgb24(), XCB_RENDER_CP_REPEAT, &repeat);
    const double scale = std::min(static_cast<double>(width) / m_surface->width(),
                                  static_cast<double>(height) / m_surface->height());
    m_width = std::max(1, static_cast<int>(std::lround(m_surface->width() * scale)));
    m_height = std::max(1, static_cast<int>(std::lround(m_surface->height() * scale)));
    m_x = (width - m_width) / 2;
    m_y = (height - m_height) / 2;
    m_destination = Region(m_x, m_y, m_width, m_height);
    if (isOneToOne())
        return;

    addHalvedLevels(formats, std::min(static_cast<double>(m_surface->width()) / m_width,
                                      static_cast<double>(m_surface->height()) / m_height));
    const double levelScale = std::exp2(static_cast<double>(m_halved.size()));
    setScale(source(), m_surface->width() / levelScale / m_width,
             m_surface->height() / levelScale / m_height);
}

void FrameScaler::addHalvedLevels(const PictureFormats& formats, double reduction) {
    auto* const xcb = m_connection.get();
    int width = m_surface->width();
    int height = m_surface->height();
    for (; reduction > 2; reduction /= 2) {
        setScale(source(), 2, 2);
        width = (width + 1) / 2;
        height = (height + 1) / 2;
        Level level{width, height, Pixmap(m_connection, m_connection.generateIdentifier()),
                    Picture(m_connection, m_connection.generateIdentifier())};
        m_connection.onError(xcb_create_pixmap(xcb, 24, level.pixmap.get(), m_connection.root(),
                                               static_cast<std::uint16_t>(width),
                                               static_cast<std::uint16_t>(height)),
                             [weak = std::weak_ptr(m_refused)] {
                                 if (const auto refused = weak.lock())
                                     refused->emit();
                             });
        const std::uint32_t repeat = XCB_RENDER_REPEAT_PAD;
        xcb_render_create_picture(xcb, level.picture.get(), level.pixmap.get(), formats.rgb24(),
                                  XCB_RENDER_CP_REPEAT, &repeat);
        m_halved.push_back(std::move(level));
    }
}

void FrameScaler::setScale(xcb_render_picture_t picture, double x, double y) const {
    constexpr std::string_view filter = "bilinear";
    auto* const xcb = m_connection.get();
    const xcb_render_transform_t transform{fixedPoint(x), 0, 0, 0, fixedPoint(y), 0, 0, 0,
                                           fixedPoint(1)};
    xcb_render_set_picture_transform(xcb, picture, transform);
    xcb_render_set_picture_filter(xcb, picture, filter.size(), filter.data(), 0, nullptr);
}

bool FrameScaler::isOneToOne() const {
    return m_width == m_surface->width() && m_height == m_surface->height();
}

xcb_render_picture_t FrameScaler::source() const {
    return m_halved.empty() ? m_picture.get() : m_halved.back().picture.get();
}

Region FrameScaler::toTarget(const Region& changed) const {
    const double scaleX = static_cast<double>(m_width) / m_surface->width();
    const double scaleY = static_cast<double>(m_height) / m_surface->height();
    // A pixel reaches into the neighbours that the filter mixes it with: one of the coarsest level.
    const double reach = std::exp2(static_cast<double>(m_halved.size()));
    Region result;
    for (const auto& box : changed.boxes()) {
        const int left = static_cast<int>(std::floor((box.x1 - reach) * scaleX));
        const int top = static_cast<int>(std::floor((box.y1 - reach) * scaleY));
        const int right = static_cast<int>(std::ceil((box.x2 + reach) * scaleX));
        const int bottom = static_cast<int>(std::ceil((box.y2 + reach) * scaleY));
        result += Region(left + m_x, top + m_y, right - left, bottom - top);
    }
    return result & m_destination;
}

void FrameScaler::draw(xcb_render_picture_t target, xcb_window_t window, const Region& changed) {
    if (isOneToOne())
        m_surface->draw({target, m_x, m_y, window}, changed & m_surface->bounds());
    else
        drawScaled(target, changed);
}

void FrameScaler::drawScaled(xcb_render_picture_t target, const Region& changed) {
    m_surface->bringUpToDate();
    auto* const xcb = m_connection.get();
    auto from = m_picture.get();
    Region part = changed;
    for (const auto& level : m_halved) {
        part = halved(part);
        const auto box = part.extents();
        setClip(m_connection, level.picture.get(), part);
        xcb_render_composite(xcb, XCB_RENDER_PICT_OP_SRC, from, XCB_NONE, level.picture.get(),
                             box.x, box.y, 0, 0, box.x, box.y, box.width, box.height);
        from = level.picture.get();
    }
    redraw(target, toTarget(changed));
}

void FrameScaler::drawAll(xcb_render_picture_t target) {
    if (isOneToOne())
        redraw(target, m_destination);
    else
        drawScaled(target, m_surface->bounds());
}

void FrameScaler::redraw(xcb_render_picture_t target, const Region& part) {
    const auto visible = part & m_destination;
    if (visible.isEmpty())
        return;
    m_surface->bringUpToDate();
    const auto box = visible.extents();
    setClip(m_connection, target, visible);
    xcb_render_composite(m_connection.get(), XCB_RENDER_PICT_OP_SRC, source(), XCB_NONE, target,
                         static_cast<std::int16_t>(box.x - m_x),
                         static_cast<std::int16_t>(box.y - m_y), 0, 0, box.x, box.y, box.width,
                         box.height);
}

} // namespace kestrove::x11
