#include "Platform/X11/Capture/RedirectedWindow.h"

#include "Platform/X11/ServerGrab.h"

#include <utility>

namespace kestrove::x11 {

RedirectedWindow::RedirectedWindow(Connection& connection, PictureFormats::Format format,
                                   xcb_window_t window, int border)
    : m_connection(connection)
    , m_lifetime(connection.lifetime())
    , m_format(format)
    , m_window(window)
    , m_border(border) {
    redirect();
}

RedirectedWindow::~RedirectedWindow() {
    if (!m_lifetime.expired())
        unredirect();
}

void RedirectedWindow::redirect() {
    auto* const xcb = m_connection.get();
    // Nobody draws in between: it would become black.
    const ServerGrab grab(m_connection);
    m_damage = DamageMonitor(m_connection, m_connection.generateIdentifier());
    m_damageTold = m_connection.onDamage(
        m_damage.get(), [this](const xcb_rectangle_t& area, std::uint32_t) { tell(area); });
    // In this order: it tells what is visible before the redirection, which is the window's own,
    // and what the server draws of the rest by itself.
    xcb_damage_create(xcb, m_damage.get(), m_window, XCB_DAMAGE_REPORT_LEVEL_DELTA_RECTANGLES);
    xcb_composite_redirect_window(xcb, m_window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);

    const auto makeRegion = [&](const xcb_rectangle_t& rectangle) {
        ServerRegion region(m_connection, m_connection.generateIdentifier());
        xcb_xfixes_create_region(xcb, region.get(), 1, &rectangle);
        return region;
    };
    const auto own = makeRegion({});
    xcb_damage_subtract(xcb, m_damage.get(), XCB_NONE, own.get());
    constexpr std::uint16_t largest = 0x7FFF;
    const xcb_rectangle_t all{0, 0, largest, largest};
    const auto others = makeRegion(all);
    xcb_xfixes_subtract_region(xcb, others.get(), own.get(), others.get());

    rename(m_border);
    // A picture of its own, for the clip. The regions are relative to the window inside its border.
    const Picture picture(m_connection, m_connection.generateIdentifier());
    xcb_render_create_picture(xcb, picture.get(), m_pixmap.get(), m_format.identifier, 0, nullptr);
    xcb_xfixes_set_picture_clip_region(xcb, picture.get(), others.get(),
                                       static_cast<std::int16_t>(m_border),
                                       static_cast<std::int16_t>(m_border));
    xcb_render_fill_rectangles(xcb, XCB_RENDER_PICT_OP_SRC, picture.get(), {0, 0, 0, 0xFFFF}, 1,
                               &all);
}

void RedirectedWindow::unredirect() {
    xcb_composite_unredirect_window(m_connection.get(), m_window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
}

void RedirectedWindow::redirectAnew() {
    unredirect();
    redirect();
}

void RedirectedWindow::rename(int border) {
    auto* const xcb = m_connection.get();
    m_border = border;
    m_picture.reset();
    m_pixmap = Pixmap(m_connection, m_connection.generateIdentifier());
    m_picture = Picture(m_connection, m_connection.generateIdentifier());
    xcb_composite_name_window_pixmap(xcb, m_window, m_pixmap.get());
    xcb_render_create_picture(xcb, m_picture.get(), m_pixmap.get(), m_format.identifier, 0,
                              nullptr);
    m_isDamaged = true;
    acceptDamage();
}

void RedirectedWindow::setInterest(const Region& interest) {
    m_interest = interest;
    // What stayed changed outside of the former interest is told from now on.
    m_isDamaged = true;
    acceptDamage();
}

void RedirectedWindow::acceptDamage() {
    // All of it: what a part leaves would be told again, each time.
    if (std::exchange(m_isDamaged, false))
        xcb_damage_subtract(m_connection.get(), m_damage.get(), XCB_NONE, XCB_NONE);
}

void RedirectedWindow::tell(const xcb_rectangle_t& insideBorder) {
    auto area = Region(insideBorder).translated(m_border, m_border);
    if (m_interest)
        area &= *m_interest;
    if (area.isEmpty())
        return;
    m_isDamaged = true;
    damaged.emit(area);
}

} // namespace kestrove::x11
