#include "Platform/X11/Capture/ServerResource.h"

namespace kestrove::x11 {

ServerRegion makeServerRegion(Connection& connection, const Region& region) {
    ServerRegion made(connection, connection.generateIdentifier());
    const auto rectangles = region.rectangles();
    xcb_xfixes_create_region(connection.get(), made.get(),
                             static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    return made;
}

} // namespace kestrove::x11
