#include "Tests/Support/PixelReader/PixelReader.h"

#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"

#include <cstring>

#include <fmt/core.h>
#include <xcb/composite.h>

namespace kestrove::test {

PixelImage readPixels(xcb_connection_t* connection, xcb_drawable_t drawable,
                      const xcb_rectangle_t& part) {
    constexpr std::uint32_t allPlanes = 0xffffffff;
    const auto cookie = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, part.x,
                                      part.y, part.width, part.height, allPlanes);
    xcb_generic_error_t* error = nullptr;
    const Reply reply(xcb_get_image_reply(connection, cookie, &error));
    if (!reply) {
        giveUp(fmt::format("cannot read {}x{}+{}+{} of {:#x}: X error {}", part.width, part.height,
                           part.x, part.y, drawable, error != nullptr ? error->error_code : 0));
    }
    PixelImage image{.width = part.width, .height = part.height, .pixels = {}};
    image.pixels.resize(static_cast<std::size_t>(part.width) * part.height);
    const auto bytes = static_cast<std::size_t>(xcb_get_image_data_length(reply.get()));
    if (reply->depth < 24 || bytes != image.pixels.size() * sizeof(std::uint32_t)) {
        giveUp(fmt::format("{:#x} has {} bytes at depth {}", drawable, bytes, reply->depth));
    }
    std::memcpy(image.pixels.data(), xcb_get_image_data(reply.get()), bytes);
    if (reply->depth == 24) {
        for (std::uint32_t& pixel : image.pixels) {
            pixel |= 0xff000000; // the byte above the colours is undefined
        }
    }
    return image;
}

PixelImage readPixels(xcb_connection_t* connection, xcb_drawable_t drawable) {
    const Reply geometry(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, drawable), nullptr));
    if (!geometry) {
        giveUp(fmt::format("{:#x} is not there", drawable));
    }
    return readPixels(connection, drawable, {0, 0, geometry->width, geometry->height});
}

PixelImage readWindowPixmap(xcb_connection_t* connection, xcb_window_t window) {
    const xcb_pixmap_t pixmap = xcb_generate_id(connection);
    const auto cookie = xcb_composite_name_window_pixmap_checked(connection, window, pixmap);
    if (const Reply error(xcb_request_check(connection, cookie)); error) {
        giveUp(fmt::format("window {:#x} is not redirected or not viewable", window));
    }
    PixelImage image = readPixels(connection, pixmap);
    xcb_free_pixmap(connection, pixmap);
    return image;
}

} // namespace kestrove::test
