#include "App/X11Desktop/X11Desktop.h"

#include "Platform/X11/Overlay/OverlayWindow.h"

#include <QGuiApplication>

#include <utility>

namespace kestrove {

namespace {

xcb_connection_t* connectionOfQt() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

} // namespace

std::expected<std::unique_ptr<X11Desktop>, PlatformError>
X11Desktop::open(MainLoop& loop, DescriptorWatching& watching, SessionSignals& session) {
    auto connection = x11::Connection::open(loop, watching, {});
    if (!connection)
        return std::unexpected(std::move(connection.error()));
    return std::unique_ptr<X11Desktop>(new X11Desktop(std::move(*connection), watching, session));
}

X11Desktop::X11Desktop(std::unique_ptr<x11::Connection> connection, DescriptorWatching& watching,
                       SessionSignals& session)
    : m_connection(std::move(connection))
    , m_windowManager(connectionOfQt())
    , m_parking(*m_connection, connectionOfQt())
    , m_monitors(*m_connection)
    , m_motion(*m_connection)
    , m_applications(DesktopEntries(DesktopEntries::foldersOfTheUser()))
    , m_screens(*m_connection, m_monitors)
    , m_pointer(*m_connection, m_monitors, m_motion)
    , m_windowServer(*m_connection, m_monitors)
    , m_workspace(*m_connection, watching, m_applications, session)
    , m_keptContent(m_connection->loop(), m_monitors, connectionOfQt())
    , m_screenCapture(*m_connection, m_monitors, m_applications, m_motion)
    , m_hotKeys(*m_connection)
    , m_keyTexts(*m_connection)
    , m_recordingAccess(*m_connection) {
    m_screenCapture.followStack(
        [this](x11::WindowStack& stack) { return m_keptContent.follow(stack); });
}

std::unique_ptr<OverlayWindow> X11Desktop::makeOverlayWindow(double pixelsPerPoint) {
    auto window = std::make_unique<x11::OverlayWindow>(*m_connection, m_monitors, pixelsPerPoint);
    m_screenCapture.neverCaptured().add(static_cast<xcb_window_t>(window->windowNumber()));
    return window;
}

NativeWindowRequests X11Desktop::windowRequests() {
    NativeWindowRequests requests;
    requests.setContentAspectRatios = [this](NativeViewHandle window,
                                             const ResizeLimits::AspectRatios& ratios) {
        m_windowManager.setContentAspectRatios(window, ratios.narrowest, ratios.widest);
    };
    requests.joinAllWorkspaces = [this](NativeViewHandle window) {
        m_windowManager.joinAllWorkspaces(window);
    };
    requests.joinLists = [this](NativeViewHandle window) { m_windowManager.joinLists(window); };
    requests.setLevel = [this](NativeViewHandle window, WindowLevel level) {
        m_windowManager.setStacking(window, level == WindowLevel::floating
                                                ? x11::Stacking::above
                                                : x11::Stacking::ordinary);
    };
    requests.activate = [this](NativeViewHandle window) { m_windowManager.activate(window); };
    requests.keepContent = [this](NativeViewHandle window) {
        m_keptContent.keep(static_cast<xcb_window_t>(window));
    };
    requests.park = [this](NativeViewHandle window, const Rect& place) {
        m_keptContent.setParked(true);
        m_parking.park(window,
                       {static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y),
                        static_cast<std::uint16_t>(place.width),
                        static_cast<std::uint16_t>(place.height)});
    };
    requests.unpark = [this](NativeViewHandle window) {
        m_parking.release(window);
        m_keptContent.setParked(false);
    };
    return requests;
}

} // namespace kestrove
