#include "Platform/X11/Capture/X11ScreenCapture.h"

#include "Async/Completion.h"
#include "Async/Sleep.h"
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

/// Without a compositor, a covered window has no pixels where it is covered. Once we have its
/// content kept, the server asks its program to draw them, which nobody tells the end of: the
/// picture is taken when nothing has been drawn for a while, or what is drawn never rests.
constexpr Seconds redrawPause{0.1};
constexpr Seconds longestRedrawing{0.5};

PlatformError serverSilent() {
    return {"X11", XCB_CONN_ERROR, "the X server does not answer"};
}

bool isImageSize(const StreamConfiguration& configuration) {
    constexpr std::int64_t longestSide = 32767; // pixels, of anything that X draws in
    const auto isSide = [](std::int64_t side) { return side >= 1 && side <= longestSide; };
    return isSide(configuration.width) && isSide(configuration.height);
}

/// What has been drawn on the way is let go of by the server as soon as the pixels are read.
xcb_get_image_cookie_t requestImage(Connection& connection, SourceContent& content,
                                    const CaptureServices& shared,
                                    const StreamConfiguration& configuration) {
    const auto extent = content.extent();
    const auto surface =
        std::make_shared<FrameSurface>(connection, shared.formats, extent.width, extent.height);
    content.paint({surface->picture()}, surface->bounds());
    const auto width = static_cast<int>(configuration.width);
    const auto height = static_cast<int>(configuration.height);
    const FrameSurface scaled(connection, shared.formats, width, height);
    FrameScaler(connection, shared.formats, surface, width, height)
        .draw(scaled.picture(), XCB_NONE, surface->bounds());
    return xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, scaled.pixmap(), 0, 0,
                         static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height),
                         ~0U);
}

StillImage stillImage(const xcb_get_image_reply_t& reply,
                      const StreamConfiguration& configuration) {
    StillImage image;
    image.width = static_cast<int>(configuration.width);
    image.height = static_cast<int>(configuration.height);
    const auto* const bytes = xcb_get_image_data(&reply);
    image.pixels.assign(bytes, bytes + xcb_get_image_data_length(&reply));
    // The fourth byte of a pixel of 24 planes means nothing: our pictures are opaque.
    for (std::size_t alpha = 3; alpha < image.pixels.size(); alpha += 4)
        image.pixels[alpha] = 0xFF;
    return image;
}

} // namespace

X11ScreenCapture::X11ScreenCapture(Connection& connection, MonitorLayout& monitors,
                                   Applications& applications, RawMotion& motion)
    : m_connection(connection)
    , m_monitors(monitors)
    , m_applications(applications)
    , m_motion(motion)
    , m_imageLanes{Turns(connection.loop()), Turns(connection.loop()), Turns(connection.loop()),
                   Turns(connection.loop())} {}

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
    if (!isImageSize(configuration))
        co_return std::unexpected(
            PlatformError("X11", XCB_VALUE, "there is no picture of this size"));
    const auto turn = co_await m_imageLanes[m_nextImageLane++ % m_imageLanes.size()].take();
    if (!m_connection.isOpen())
        co_return std::unexpected(serverSilent());
    const auto shared = services();
    auto opened = openSourceContent(m_connection, m_monitors, *shared, filter);
    if (!opened)
        co_return std::unexpected(std::move(opened.error()));
    const auto content = std::move(*opened);
    std::optional<PlatformError> gone;
    const auto watch = content->gone.subscribe([&gone](const auto& error) { gone = error; });

    for (Seconds waited(0); waited < longestRedrawing; waited += redrawPause) {
        (void)content->takeDamage();
        m_connection.flush();
        co_await Sleep(m_connection.loop(), redrawPause);
        if (!shared->isCurrent())
            co_return std::unexpected(serverSilent());
        if (gone)
            co_return std::unexpected(std::move(*gone));
        if (!content->hasDamage())
            break;
    }

    const Completion<std::shared_ptr<xcb_get_image_reply_t>> pixels(m_connection.loop());
    m_connection.onReply(requestImage(m_connection, *content, *shared, configuration),
                         [pixels](Reply<void> reply) {
                             pixels.complete(std::static_pointer_cast<xcb_get_image_reply_t>(
                                 std::shared_ptr<void>(std::move(reply))));
                         });
    const auto reply = co_await pixels;
    if (!reply)
        co_return std::unexpected(serverSilent());
    co_return stillImage(*reply, configuration);
}

} // namespace kestrove::x11
