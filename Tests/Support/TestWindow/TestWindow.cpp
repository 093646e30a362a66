#include "Tests/Support/TestWindow/TestWindow.h"

#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"

#include <algorithm>
#include <array>

#include <unistd.h>

#include <fmt/core.h>
#include <xcb/shape.h>

namespace kestrove::test {

namespace {

/// Rows of the pattern go in stripes that fit into a request of the core protocol.
constexpr int pixelsOfARequest = 60000;

std::uint16_t length(int pixels) {
    return static_cast<std::uint16_t>(pixels);
}

} // namespace

TestWindow::TestWindow(const std::string& displayName, const Options& options)
    : m_connection(xcb_connect(displayName.c_str(), nullptr))
    , m_depth(options.depth)
    , m_fill(options.fill)
    , m_color(options.color) {
    if (xcb_connection_has_error(m_connection) != 0) {
        giveUp("a test window cannot connect to " + displayName);
    }
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_window = xcb_generate_id(m_connection);
    // A depth that is not the root's needs a border colour and a colour map of its own.
    const xcb_colormap_t colors = xcb_generate_id(m_connection);
    xcb_create_colormap(m_connection, XCB_COLORMAP_ALLOC_NONE, colors, m_screen->root, visual());
    const std::array<std::uint32_t, 4> values{0, 0, options.overrideRedirect ? 1U : 0U, colors};
    const xcb_rectangle_t& place = options.geometry;
    const auto cookie = xcb_create_window_checked(
        m_connection, m_depth, m_window, m_screen->root, place.x, place.y, place.width,
        place.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual(),
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP,
        values.data());
    if (const Reply error(xcb_request_check(m_connection, cookie)); error) {
        giveUp(fmt::format("cannot create a test window: X error {}", error->error_code));
    }
    paint(place.width, place.height);
    setHints(options);
    if (options.mapped) {
        show();
    }
}

TestWindow::~TestWindow() {
    disconnect();
}

xcb_visualid_t TestWindow::visual() const {
    if (m_depth == m_screen->root_depth) {
        return m_screen->root_visual;
    }
    auto depths = xcb_screen_allowed_depths_iterator(m_screen);
    for (; depths.rem > 0; xcb_depth_next(&depths)) {
        if (depths.data->depth == m_depth && xcb_depth_visuals_length(depths.data) > 0) {
            return xcb_depth_visuals(depths.data)->visual_id;
        }
    }
    giveUp(fmt::format("the X server has no visual of depth {}", m_depth));
}

void TestWindow::setHints(const Options& options) {
    // ICCCM WM_SIZE_HINTS: the user chose position and size, and static gravity keeps the content,
    // not the frame, there.
    constexpr std::uint32_t userPosition = 1;
    constexpr std::uint32_t userSize = 2;
    constexpr std::uint32_t hasGravity = 512;
    std::vector<std::uint32_t> hints(18);
    hints.front() = userPosition | userSize | hasGravity;
    hints.back() = XCB_GRAVITY_STATIC;
    setProperty("WM_NORMAL_HINTS", XCB_ATOM_WM_SIZE_HINTS, hints);

    setText("WM_CLASS", "STRING", options.instanceName + '\0' + options.className + '\0');
    std::array<char, 256> host{};
    ::gethostname(host.data(), host.size() - 1);
    setText("WM_CLIENT_MACHINE", "STRING", host.data());
    const auto process = options.processIdentifier.value_or(static_cast<unsigned>(::getpid()));
    setProperty("_NET_WM_PID", XCB_ATOM_CARDINAL, {process});
    setTitle(options.title);
    if (options.opacity) {
        setOpacity(*options.opacity);
    }
}

xcb_rectangle_t TestWindow::geometry() const {
    const Reply size(
        xcb_get_geometry_reply(m_connection, xcb_get_geometry(m_connection, m_window), nullptr));
    const Reply place(xcb_translate_coordinates_reply(
        m_connection, xcb_translate_coordinates(m_connection, m_window, m_screen->root, 0, 0),
        nullptr));
    if (!size || !place) {
        return {};
    }
    return {place->dst_x, place->dst_y, size->width, size->height};
}

bool TestWindow::isViewable() const {
    const auto cookie = xcb_get_window_attributes(m_connection, m_window);
    const Reply reply(xcb_get_window_attributes_reply(m_connection, cookie, nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

void TestWindow::show() {
    xcb_map_window(m_connection, m_window);
    sync(m_connection);
    if (!waitUntil([this] { return isViewable(); })) {
        giveUp("a test window does not come up");
    }
}

void TestWindow::unmap() {
    xcb_unmap_window(m_connection, m_window);
    sync(m_connection);
}

void TestWindow::raise() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    sync(m_connection);
}

void TestWindow::move(int x, int y) {
    const std::array<std::uint32_t, 2> values{static_cast<std::uint32_t>(x),
                                              static_cast<std::uint32_t>(y)};
    xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y,
                         values.data());
    sync(m_connection);
}

void TestWindow::resize(int width, int height) {
    paint(width, height); // first, so that the server never shows anything else in the new area
    const std::array<std::uint32_t, 2> values{length(width), length(height)};
    xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    sync(m_connection);
}

void TestWindow::destroy() {
    xcb_destroy_window(m_connection, m_window);
    sync(m_connection);
}

void TestWindow::disconnect() {
    if (m_connection != nullptr) {
        xcb_disconnect(m_connection);
        m_connection = nullptr;
    }
}

void TestWindow::paint(int width, int height) {
    const xcb_pixmap_t content = xcb_generate_id(m_connection);
    xcb_create_pixmap(m_connection, m_depth, content, m_window, length(width), length(height));
    const xcb_gcontext_t context = xcb_generate_id(m_connection);
    xcb_create_gc(m_connection, context, content, XCB_GC_FOREGROUND, &m_color);
    if (m_fill == WindowFill::color) {
        const xcb_rectangle_t all{0, 0, length(width), length(height)};
        xcb_poly_fill_rectangle(m_connection, content, context, 1, &all);
    } else {
        const int rows = std::max(1, pixelsOfARequest / width);
        std::vector<Color> stripe;
        for (int top = 0; top < height; top += rows) {
            const int bottom = std::min(height, top + rows);
            stripe.clear();
            for (int y = top; y < bottom; ++y) {
                for (int x = 0; x < width; ++x) {
                    stripe.push_back(patternAt(x, y));
                }
            }
            xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, content, context, length(width),
                          length(bottom - top), 0, static_cast<std::int16_t>(top), 0, m_depth,
                          static_cast<std::uint32_t>(stripe.size() * sizeof(Color)),
                          reinterpret_cast<const std::uint8_t*>(stripe.data()));
        }
    }
    xcb_change_window_attributes(m_connection, m_window, XCB_CW_BACK_PIXMAP, &content);
    xcb_clear_area(m_connection, 0, m_window, 0, 0, 0, 0);
    xcb_free_gc(m_connection, context);
    if (m_content != XCB_PIXMAP_NONE) {
        xcb_free_pixmap(m_connection, m_content);
    }
    m_content = content;
    sync(m_connection);
}

void TestWindow::hang() {
    const std::uint32_t none = XCB_BACK_PIXMAP_NONE;
    xcb_change_window_attributes(m_connection, m_window, XCB_CW_BACK_PIXMAP, &none);
    sync(m_connection);
}

void TestWindow::fillRectangle(const xcb_rectangle_t& rectangle, Color color) {
    const xcb_gcontext_t context = xcb_generate_id(m_connection);
    xcb_create_gc(m_connection, context, m_content, XCB_GC_FOREGROUND, &color);
    xcb_poly_fill_rectangle(m_connection, m_content, context, 1, &rectangle);
    xcb_poly_fill_rectangle(m_connection, m_window, context, 1, &rectangle);
    xcb_free_gc(m_connection, context);
    sync(m_connection);
}

void TestWindow::setShape(const std::vector<xcb_rectangle_t>& rectangles) {
    xcb_shape_rectangles(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED, m_window, 0, 0,
                         static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    sync(m_connection);
}

void TestWindow::setOpacity(double opacity) {
    setProperty("_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL,
                {static_cast<std::uint32_t>(opacity * 0xffffffff)});
}

void TestWindow::setTitle(std::string_view title) {
    setText("WM_NAME", "STRING", title);
    setText("_NET_WM_NAME", "UTF8_STRING", title);
}

void TestWindow::setProperty(std::string_view name, xcb_atom_t type,
                             const std::vector<std::uint32_t>& items) {
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom(name), type, 32,
                        static_cast<std::uint32_t>(items.size()), items.data());
    sync(m_connection);
}

void TestWindow::setText(std::string_view name, std::string_view type, std::string_view text) {
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, atom(name), atom(type), 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
    sync(m_connection);
}

void TestWindow::removeProperty(std::string_view name) {
    xcb_delete_property(m_connection, m_window, atom(name));
    sync(m_connection);
}

xcb_atom_t TestWindow::atom(std::string_view name) const {
    const auto cookie =
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Reply reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

Color TestWindow::patternAt(int x, int y) {
    // Two coordinates and a coarse board: every pixel differs from its eight neighbours, and
    // positions repeat only after 256 pixels in the same direction.
    const auto red = static_cast<std::uint32_t>(x) & 0xff;
    const auto green = static_cast<std::uint32_t>(y) & 0xff;
    const std::uint32_t blue = (((x / 16) + (y / 16)) % 2) != 0 ? 0xc0 : 0x40;
    return 0xff000000 | red << 16 | green << 8 | blue;
}

} // namespace kestrove::test
