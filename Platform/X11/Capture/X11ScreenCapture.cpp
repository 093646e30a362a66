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

#include <array>
#include <memory>
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

/// What a picture is drawn by way of. It stays until the pixels are there: by then the server has
/// said, too, whether it had the memory. Where it had none, what was to be drawn on stays black.
class Drawing {
public:
    Drawing(Connection& connection, SourceContent& content, const CaptureServices& shared,
            const StreamConfiguration& configuration)
        : m_connection(connection)
        , m_surface(std::make_shared<FrameSurface>(connection, shared.formats,
                                                   content.extent().width, content.extent().height))
        , m_scaled(connection, shared.formats, static_cast<int>(configuration.width),
                   static_cast<int>(configuration.height))
        , m_scaler(connection, shared.formats, m_surface, m_scaled.width(), m_scaled.height())
        , m_refusals{watch(m_surface->refused()), watch(m_scaled.refused()),
                     watch(m_scaler.refused())} {
        content.paint({m_surface->picture()}, m_surface->bounds());
        m_scaler.draw(m_scaled.picture(), XCB_NONE, m_surface->bounds());
    }
    Drawing(const Drawing&) = delete;
    Drawing& operator=(const Drawing&) = delete;
    ~Drawing() = default;

    [[nodiscard]] xcb_get_image_cookie_t requestPixels() const {
        return xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_scaled.pixmap(), 0, 0,
                             static_cast<std::uint16_t>(m_scaled.width()),
                             static_cast<std::uint16_t>(m_scaled.height()), ~0U);
    }
    [[nodiscard]] bool isRefused() const { return m_isRefused; }

private:
    [[nodiscard]] Subscription watch(Signal<>& refused) {
        return refused.subscribe([this] { m_isRefused = true; });
    }

    Connection& m_connection;
    bool m_isRefused = false;
    std::shared_ptr<FrameSurface> m_surface;
    FrameSurface m_scaled;
    FrameScaler m_scaler;
    std::array<Subscription, 3> m_refusals;
};

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
        if (m_followStack)
            services->following = m_followStack(services->stack);
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
    const Drawing drawing(m_connection, *content, *shared, configuration);
    m_connection.onReply(drawing.requestPixels(), [pixels](Reply<void> reply) {
        pixels.complete(std::static_pointer_cast<xcb_get_image_reply_t>(
            std::shared_ptr<void>(std::move(reply))));
    });
    const auto reply = co_await pixels;
    if (drawing.isRefused())
        co_return std::unexpected(noMemory());
    if (!reply)
        co_return std::unexpected(serverSilent());
    co_return stillImage(*reply, configuration);
}

} // namespace kestrove::x11
