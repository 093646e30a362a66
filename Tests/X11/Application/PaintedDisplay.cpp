#include "Tests/X11/Application/PaintedDisplay.h"

#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/XServer/Reply.h"

#include <algorithm>

namespace kestrove::test {

namespace {

constexpr Color pointerColor = 0xffff8000;
constexpr std::uint16_t pointerSize = 12; ///< a square; the hot spot is its upper left corner

void fill(PixelImage& image, int left, int top, int width, int height, Color color) {
    for (int y = std::max(0, top); y < std::min(image.height, top + height); ++y) {
        for (int x = std::max(0, left); x < std::min(image.width, left + width); ++x) {
            image.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                         static_cast<std::size_t>(x)] = color;
        }
    }
}

} // namespace

PaintedDisplay::PaintedDisplay(XDesktop& desktop, const xcb_rectangle_t& place, WindowFill fill,
                               std::uint8_t depth)
    : m_desktop(desktop)
    , m_place(place)
    , m_window(desktop.displayName(),
               {.geometry = place, .depth = depth, .fill = fill, .overrideRedirect = true}) {
    // Window managers put what they manage anywhere among the others.
    const std::uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(m_window.connection(), m_window.id(), XCB_CONFIG_WINDOW_STACK_MODE,
                         &below);
    usePointer();
    // Not the root: a compositor shows windows without painting them there.
    m_picture = readPixels(desktop.connection(), m_window.id());
}

void PaintedDisplay::usePointer() {
    auto* const connection = m_window.connection();
    const xcb_pixmap_t shape = xcb_generate_id(connection);
    xcb_create_pixmap(connection, 1, shape, m_window.id(), pointerSize, pointerSize);
    const xcb_gcontext_t context = xcb_generate_id(connection);
    const std::uint32_t set = 1;
    xcb_create_gc(connection, context, shape, XCB_GC_FOREGROUND, &set);
    const xcb_rectangle_t all{0, 0, pointerSize, pointerSize};
    xcb_poly_fill_rectangle(connection, shape, context, 1, &all);
    const xcb_cursor_t cursor = xcb_generate_id(connection);
    xcb_create_cursor(connection, cursor, shape, shape, 0xffff, 0x8080, 0, 0, 0, 0, 0, 0);
    xcb_change_window_attributes(connection, m_window.id(), XCB_CW_CURSOR, &cursor);
    xcb_free_gc(connection, context);
    xcb_free_pixmap(connection, shape);
    sync(connection);
}

void PaintedDisplay::paint(const xcb_rectangle_t& rectangle, Color color) {
    fill(m_picture, rectangle.x, rectangle.y, rectangle.width, rectangle.height, color);
    m_window.fillRectangle(rectangle, color);
    m_painted = rectangle;
}

void PaintedDisplay::paintAgain() {
    m_window.unmap();
    m_window.show();
}

bool PaintedDisplay::isOnScreen() const {
    const int x = m_painted.x + m_painted.width / 2;
    const int y = m_painted.y + m_painted.height / 2;
    const xcb_rectangle_t pixel{static_cast<std::int16_t>(m_place.x + x),
                                static_cast<std::int16_t>(m_place.y + y), 1, 1};
    const auto screen = readPixels(m_desktop.connection(), m_desktop.root(), pixel);
    return screen.pixel(0, 0) == m_picture.pixel(x, y);
}

PixelImage PaintedDisplay::picture() const {
    auto* const connection = m_desktop.connection();
    const Reply pointer(xcb_query_pointer_reply(
        connection, xcb_query_pointer(connection, m_desktop.root()), nullptr));
    auto picture = m_picture;
    if (!pointer) {
        return picture;
    }
    const int x = pointer->root_x - m_place.x;
    const int y = pointer->root_y - m_place.y;
    if (x >= 0 && y >= 0 && x < m_place.width && y < m_place.height) {
        fill(picture, x, y, pointerSize, pointerSize, pointerColor);
    }
    return picture;
}

} // namespace kestrove::test
