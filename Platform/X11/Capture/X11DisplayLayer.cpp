#include "Platform/X11/Capture/X11DisplayLayer.h"

#include "Platform/X11/RequestOrder.h"

#include <array>
#include <utility>

namespace kestrove::x11 {

X11DisplayLayer::X11DisplayLayer(Connection& connection)
    : m_connection(connection)
    , m_events(connection.events.subscribe([this](const auto& event) { onEvent(event); }))
    , m_drained(connection.eventsDrained.subscribe([this] { onDrained(); }))
    , m_lost(connection.lost.subscribe([this] {
        m_surface.reset();
        m_scaler.reset();
        m_formats.reset();
        m_status = DisplayLayerStatus::failed;
    }))
    , m_opened(connection.opened.subscribe([this] { createWindow(); })) {}

void X11DisplayLayer::setHost(NativeViewHandle host) {
    destroyWindow();
    m_host = static_cast<xcb_window_t>(host);
    createWindow();
}

void X11DisplayLayer::createWindow() {
    if (m_host == XCB_NONE || !m_connection.isOpen())
        return;
    auto* const xcb = m_connection.get();
    m_connection.selectEvents(m_host, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    const auto attributes =
        m_connection.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(xcb, m_host));
    const auto askedGeometry = xcb_get_geometry(xcb, m_host);
    m_sizeAsked = askedGeometry.sequence;
    const auto geometry = m_connection.reply(xcb_get_geometry_reply, askedGeometry);
    if (!m_formats)
        m_formats = std::make_unique<PictureFormats>(m_connection);
    const auto format = attributes ? m_formats->ofVisual(attributes->visual) : std::nullopt;
    if (!geometry || !format) {
        m_status = DisplayLayerStatus::failed;
        return;
    }
    m_width = geometry->width;
    m_height = geometry->height;
    m_window = Window(m_connection, m_connection.generateIdentifier());
    // Black without transparency: what no frame covers.
    const std::uint32_t black = format->hasAlpha ? 0xFF000000U : m_connection.screen().black_pixel;
    xcb_create_window(xcb, XCB_COPY_FROM_PARENT, m_window.get(), m_host, 0, 0, geometry->width,
                      geometry->height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL, &black);
    m_target = Picture(m_connection, m_connection.generateIdentifier());
    xcb_render_create_picture(xcb, m_target.get(), m_window.get(), format->identifier, 0, nullptr);
    m_connection.selectEvents(m_window.get(), XCB_EVENT_MASK_EXPOSURE);
    xcb_map_window(xcb, m_window.get());
    m_scaler.reset();
    drawAll();
    m_connection.flush();
}

void X11DisplayLayer::destroyWindow() {
    if (m_host == XCB_NONE)
        return;
    m_connection.deselectEvents(m_host, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    if (m_window)
        m_connection.deselectEvents(m_window.get(), XCB_EVENT_MASK_EXPOSURE);
    m_scaler.reset();
    m_target.reset();
    m_window.reset();
    m_exposed.clear();
    m_host = XCB_NONE;
    m_connection.flush();
}

void X11DisplayLayer::enqueue(SampleBufferPointer sample) {
    // Only a flush makes it try anew.
    if (m_status == DisplayLayerStatus::failed)
        return;
    const auto* const frame = dynamic_cast<const FrameSample*>(sample.get());
    if (!frame || !frame->isValid() || !frame->content().surface->isValid()) {
        m_status = DisplayLayerStatus::failed;
        return;
    }
    const auto& content = frame->content();
    const bool follows = content.surface == m_surface && content.number == m_lastNumber + 1;
    m_lastNumber = content.number;
    m_status = DisplayLayerStatus::rendering;
    if (content.surface != m_surface) {
        m_surface = content.surface;
        m_scaler.reset();
    }
    if (!m_window)
        return;
    if (m_scaler && follows)
        m_scaler->draw(m_target.get(), m_window.get(), content.damage);
    else
        drawAll();
    m_connection.flush();
}

void X11DisplayLayer::flush() {
    const bool hadFrame = m_surface != nullptr;
    m_surface.reset();
    m_scaler.reset();
    m_lastNumber = 0;
    m_exposed.clear();
    m_status = m_connection.isOpen() ? DisplayLayerStatus::unknown : DisplayLayerStatus::failed;
    if (!hadFrame || !m_window)
        return;
    clear();
    // Another program that captures our window may ask for its pixels the moment we return.
    m_connection.synchronize();
}

void X11DisplayLayer::clear() {
    xcb_clear_area(m_connection.get(), 0, m_window.get(), 0, 0, 0, 0);
}

void X11DisplayLayer::prepareScaler() {
    if (m_scaler || !m_surface || !m_formats)
        return;
    m_scaler =
        std::make_unique<FrameScaler>(m_connection, *m_formats, m_surface, m_width, m_height);
    m_scalerRefused = m_scaler->refused().subscribe([shown = std::weak_ptr(m_surface)] {
        if (const auto surface = shown.lock())
            surface->refused().emit();
    });
    const auto margin = Region(0, 0, m_width, m_height) - m_scaler->destination();
    for (const auto& box : margin.rectangles())
        xcb_clear_area(m_connection.get(), 0, m_window.get(), box.x, box.y, box.width, box.height);
}

void X11DisplayLayer::drawAll() {
    prepareScaler();
    if (!m_scaler)
        return;
    m_exposed.clear();
    m_wholeDrawing = xcb_no_operation(m_connection.get()).sequence;
    m_scaler->drawAll(m_target.get());
}

void X11DisplayLayer::resize(int width, int height) {
    if (!m_window || (width == m_width && height == m_height))
        return;
    m_width = width;
    m_height = height;
    const std::array<std::uint32_t, 2> size{static_cast<std::uint32_t>(width),
                                            static_cast<std::uint32_t>(height)};
    xcb_configure_window(m_connection.get(), m_window.get(),
                         XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size.data());
    m_scaler.reset();
    drawAll();
    m_connection.flush();
}

void X11DisplayLayer::onEvent(const xcb_generic_event_t& event) {
    // Events come in the order of the requests.
    if (m_wholeDrawing && isSince(event.full_sequence, *m_wholeDrawing))
        m_wholeDrawing.reset();
    if (m_sizeAsked && isSince(event.full_sequence, *m_sizeAsked))
        m_sizeAsked.reset();
    const int type = event.response_type & 0x7F;
    if (type == XCB_CONFIGURE_NOTIFY) {
        const auto& configure = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        // Of an earlier time with the same host, more may have come that was not told.
        if (m_host != XCB_NONE && configure.event == m_host && configure.window == m_host &&
            !m_sizeAsked)
            resize(configure.width, configure.height);
    } else if (type == XCB_EXPOSE) {
        const auto& expose = reinterpret_cast<const xcb_expose_event_t&>(event);
        if (m_window && expose.window == m_window.get() && !m_wholeDrawing)
            m_exposed += Region(expose.x, expose.y, expose.width, expose.height);
    }
}

void X11DisplayLayer::onDrained() {
    const auto exposed = std::exchange(m_exposed, {});
    if (exposed.isEmpty() || !m_scaler || !m_window)
        return;
    m_scaler->redraw(m_target.get(), exposed);
    m_connection.flush();
}

} // namespace kestrove::x11
