#include "Bench/Tools/Display.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <limits.h>
#include <unistd.h>

namespace kestrove::bench {

namespace {

/// Replies and events are malloc'ed by xcb.
struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

[[noreturn]] void giveUp(const char* why) {
    std::fprintf(stderr, "bench tool: %s\n", why);
    std::exit(1);
}

} // namespace

Display::Display()
    : m_connection(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(m_connection))
        giveUp("no X server at $DISPLAY");
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
}

Display::~Display() {
    xcb_disconnect(m_connection);
}

xcb_window_t Display::makeWindow(std::string_view title, const xcb_rectangle_t& geometry,
                                 std::uint32_t color) const {
    const auto window = xcb_generate_id(m_connection);
    const std::array<std::uint32_t, 2> values{color, XCB_EVENT_MASK_EXPOSURE};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, root(), geometry.x, geometry.y,
                      geometry.width, geometry.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(title.size()), title.data());
    sayWhose(window);
    demandExactPlace(window, geometry);
    xcb_map_window(m_connection, window);
    xcb_flush(m_connection);
    while (const Reply<xcb_generic_event_t> event{xcb_wait_for_event(m_connection)}) {
        if ((event->response_type & 0x7f) == XCB_EXPOSE)
            return window;
    }
    giveUp("the X server has gone");
}

void Display::sayWhose(xcb_window_t window) const {
    constexpr std::string_view property = "_NET_WM_PID";
    const Reply<xcb_intern_atom_reply_t> atom{xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, property.size(), property.data()), nullptr)};
    const auto process = static_cast<std::uint32_t>(getpid());
    std::array<char, HOST_NAME_MAX + 1> machine{};
    if (!atom || gethostname(machine.data(), machine.size() - 1) != 0)
        giveUp("the windows have no owner");
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, atom->atom, XCB_ATOM_CARDINAL,
                        32, 1, &process);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLIENT_MACHINE,
                        XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(strlen(machine.data())),
                        machine.data());
    constexpr auto application = std::to_array("kestrove-bench\0Kestrove-bench");
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                        XCB_ATOM_STRING, 8, application.size(), application.data());
}

void Display::demandExactPlace(xcb_window_t window, const xcb_rectangle_t& geometry) const {
    // WM_NORMAL_HINTS (ICCCM 4.1.2.3): the user's own position and size, which window managers
    // keep, for the content, not the frame (static gravity).
    constexpr std::uint32_t userPosition = 1, userSize = 2, withGravity = 1U << 9;
    std::array<std::uint32_t, 18> hints{};
    hints[0] = userPosition | userSize | withGravity;
    hints[1] = static_cast<std::uint32_t>(geometry.x);
    hints[2] = static_cast<std::uint32_t>(geometry.y);
    hints[3] = geometry.width;
    hints[4] = geometry.height;
    hints[17] = XCB_GRAVITY_STATIC;
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, hints.size(), hints.data());
}

xcb_gcontext_t Display::makePen(std::uint32_t color) const {
    const auto pen = xcb_generate_id(m_connection);
    xcb_create_gc(m_connection, pen, root(), XCB_GC_FOREGROUND, &color);
    return pen;
}

std::uint32_t Display::pixel(xcb_window_t window, int x, int y) const {
    const auto cookie =
        xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), 1, 1, ~0U);
    const Reply<xcb_get_image_reply_t> image{xcb_get_image_reply(m_connection, cookie, nullptr)};
    if (!image || xcb_get_image_data_length(image.get()) < 4)
        giveUp("the watched window cannot be read");
    std::uint32_t color = 0;
    std::memcpy(&color, xcb_get_image_data(image.get()), sizeof color);
    return color & 0xffffff;
}

void Display::settle() const {
    const Reply<xcb_get_input_focus_reply_t> reply{
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr)};
}

} // namespace kestrove::bench
