#include "Platform/X11/Capture/RootBackground.h"

#include "Platform/X11/Capture/PictureFormats.h"

#include <array>
#include <xcb/shape.h>

namespace kestrove::x11 {
namespace {

constexpr auto wallpaperProperties = std::to_array({"_XROOTPMAP_ID", "ESETROOT_PMAP_ID"});

/// What compositing managers paint where no wallpaper is set.
constexpr xcb_render_color_t grey{0x8080, 0x8080, 0x8080, 0xFFFF};

} // namespace

RootBackground::RootBackground(Connection& connection, const PictureFormats& formats,
                               xcb_rectangle_t area, bool isComposited)
    : m_connection(connection)
    , m_picture(connection, connection.generateIdentifier()) {
    if (readWallpaper(formats))
        return;
    if (isComposited)
        xcb_render_create_solid_fill(connection.get(), m_picture.get(), grey);
    else
        paintRootBackground(formats, area);
}

bool RootBackground::isWallpaperProperty(Connection& connection, xcb_atom_t atom) {
    for (const auto* name : wallpaperProperties) {
        if (connection.atom(name) == atom)
            return true;
    }
    return false;
}

bool RootBackground::readWallpaper(const PictureFormats& formats) {
    auto* const xcb = m_connection.get();
    for (const auto* name : wallpaperProperties) {
        const auto property =
            m_connection.reply(xcb_get_property_reply,
                               xcb_get_property(xcb, 0, m_connection.root(),
                                                m_connection.atom(name), XCB_ATOM_PIXMAP, 0, 1));
        if (!property || xcb_get_property_value_length(property.get()) != sizeof(xcb_pixmap_t))
            continue;
        const auto pixmap = *static_cast<xcb_pixmap_t*>(xcb_get_property_value(property.get()));
        const auto geometry =
            m_connection.reply(xcb_get_geometry_reply, xcb_get_geometry(xcb, pixmap));
        const auto format = formats.ofVisual(m_connection.screen().root_visual);
        if (!geometry || !format || geometry->depth != format->depth)
            continue;
        const std::uint32_t repeat = XCB_RENDER_REPEAT_NORMAL;
        xcb_render_create_picture(xcb, m_picture.get(), pixmap, format->identifier,
                                  XCB_RENDER_CP_REPEAT, &repeat);
        return true;
    }
    return false;
}

void RootBackground::paintRootBackground(const PictureFormats& formats, xcb_rectangle_t area) {
    auto* const xcb = m_connection.get();
    const auto window = m_connection.generateIdentifier();
    m_pixmap = Pixmap(m_connection, m_connection.generateIdentifier());
    m_originX = area.x;
    m_originY = area.y;
    const std::array<std::uint32_t, 2> attributes{XCB_BACK_PIXMAP_PARENT_RELATIVE, 1};
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, window, m_connection.root(), area.x, area.y,
                      area.width, area.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT,
                      attributes.data());
    // Redirected by hand, the window is painted nowhere; below everything and without an input
    // shape, nobody meets it in the moment that it lives.
    xcb_composite_redirect_window(xcb, window, XCB_COMPOSITE_REDIRECT_MANUAL);
    xcb_shape_rectangles(xcb, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                         window, 0, 0, 0, nullptr);
    const std::uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(xcb, window, XCB_CONFIG_WINDOW_STACK_MODE, &below);
    xcb_map_window(xcb, window);
    xcb_composite_name_window_pixmap(xcb, window, m_pixmap.get());
    xcb_destroy_window(xcb, window);

    if (const auto format = formats.ofVisual(m_connection.screen().root_visual))
        xcb_render_create_picture(xcb, m_picture.get(), m_pixmap.get(), format->identifier, 0,
                                  nullptr);
}

} // namespace kestrove::x11
