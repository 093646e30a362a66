#pragma once

#include "Tests/Support/PixelReader/PixelImage.h"

#include <xcb/xcb.h>

namespace kestrove::test {

/// What a drawable holds, read by the core protocol's own request: an independent reference for
/// what was drawn. Of a window only the visible part can be read, with what lies inside of it; the
/// root window gives the screen. Ends the program when the server refuses.
[[nodiscard]] PixelImage readPixels(xcb_connection_t* connection, xcb_drawable_t drawable,
                                    const xcb_rectangle_t& part);
[[nodiscard]] PixelImage readPixels(xcb_connection_t* connection, xcb_drawable_t drawable);

/// The content of a redirected window, whoever redirects it, also where it is covered.
[[nodiscard]] PixelImage readWindowPixmap(xcb_connection_t* connection, xcb_window_t window);

} // namespace kestrove::test
