#include "Platform/X11/Capture/X11ScreenCapture.h"

#include "Platform/X11/Capture/FrameScaler.h"
#include "Platform/X11/Capture/SourceContents.h"
#include "Platform/X11/Capture/X11CaptureStream.h"
#include "Platform/X11/Screens/Coordinates.h"
#include "Platform/X11/WindowIdentity/ClientList.h"
#include "Platform/X11/WindowIdentity/WindowIdentity.h"
#include "Platform/X11/WindowIdentity/WindowLayer.h"

#include <utility>

namespace kestrove::x11 {
namespace {

PlatformError serverSilent() {
    return {"X11", XCB_CONN_ERROR, "the X server does not answer"};
}

} // namespace

X11ScreenCapture::X11ScreenCapture(Connection& connection, MonitorLayout& monitors,
                                   Applications& applications, RawMotion& motion)
    : m_connection(connection)
    , m_monitors(monitors)
    , m_applications(applications)
    , m_motion(motion) {}

Task<std::expected<ShareableContent, PlatformError>>
X11ScreenCapture::shareableContent(DesktopWindows desktopWindows, WindowsListed windowsListed) {
    if (auto opened = m_connection.reopen(); !opened)
        co_return std::unexpected(std::move(opened.error()));
    const auto clients = readClientList(m_connection);
    if (!clients)
        co_return std::unexpected(serverSilent());
    const auto windows = readIdentities(m_connection, *clients);
    m_applications.meet(windows);

    ShareableContent content;
    for (const auto& monitor : m_monitors.monitors())
        content.displays.push_back({monitor.id, monitor.rectangle.width, monitor.rectangle.height});
    const Coordinates coordinates(m_monitors.monitors());
    for (const auto& window : windows) {
        if (desktopWindows == DesktopWindows::excluded && window.layer == layer::desktop)
            continue;
        if (windowsListed == WindowsListed::onScreenOnly && !window.isOnScreen)
            continue;
        CapturableWindow listed;
        listed.windowID = window.windowID;
        listed.windowLayer = window.layer;
        listed.title = window.title;
        listed.frame = coordinates.windowServerRect(window.rootBounds);
        listed.isOnScreen = window.isOnScreen;
        listed.owningApplication = m_applications.owner(window);
        content.windows.push_back(std::move(listed));
    }
    co_return content;
}

std::shared_ptr<CaptureServices> X11ScreenCapture::services() {
    auto services = m_services.lock();
    if (!services || !services->isCurrent()) {
        services = std::make_shared<CaptureServices>(m_connection, m_motion, m_neverCaptured);
        m_services = services;
    }
    return services;
}

std::shared_ptr<CaptureStream> X11ScreenCapture::makeStream(ContentFilter filter,
                                                            StreamConfiguration configuration,
                                                            StopHandler stopped) {
    return std::make_shared<X11CaptureStream>(m_connection, m_monitors,
                                              m_connection.isOpen() ? services() : nullptr,
                                              std::move(filter), configuration, std::move(stopped));
}

Task<std::expected<StillImage, PlatformError>>
X11ScreenCapture::captureImage(ContentFilter filter, StreamConfiguration configuration) {
    if (!m_connection.isOpen())
        co_return std::unexpected(serverSilent());
    const auto shared = services();
    auto content = openSourceContent(m_connection, m_monitors, *shared, filter);
    if (!content)
        co_return std::unexpected(std::move(content.error()));
    co_return readImage(**content, *shared, configuration);
}

std::expected<StillImage, PlatformError>
X11ScreenCapture::readImage(SourceContent& content, const CaptureServices& shared,
                            const StreamConfiguration& configuration) {
    auto* const xcb = m_connection.get();
    const auto extent = content.extent();
    const auto surface =
        std::make_shared<FrameSurface>(m_connection, shared.formats, extent.width, extent.height);
    content.paint(*surface, surface->bounds());
    StillImage image;
    image.width = static_cast<int>(configuration.width);
    image.height = static_cast<int>(configuration.height);
    const FrameSurface scaled(m_connection, shared.formats, image.width, image.height);
    FrameScaler(m_connection, shared.formats, surface, image.width, image.height)
        .draw(scaled.picture(), surface->bounds());
    const auto pixels = m_connection.reply(
        xcb_get_image_reply, xcb_get_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, scaled.pixmap(), 0, 0,
                                           static_cast<std::uint16_t>(image.width),
                                           static_cast<std::uint16_t>(image.height), ~0U));
    if (!pixels)
        return std::unexpected(serverSilent());
    const auto* const bytes = xcb_get_image_data(pixels.get());
    image.pixels.assign(bytes, bytes + xcb_get_image_data_length(pixels.get()));
    // The fourth byte of a pixel of 24 planes means nothing: our pictures are opaque.
    for (std::size_t alpha = 3; alpha < image.pixels.size(); alpha += 4)
        image.pixels[alpha] = 0xFF;
    return image;
}

} // namespace kestrove::x11
