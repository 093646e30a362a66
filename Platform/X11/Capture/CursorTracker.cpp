#include "Platform/X11/Capture/CursorTracker.h"

#include <algorithm>
#include <utility>
#include <xcb/xfixes.h>

namespace kestrove::x11 {
namespace {

/// Animated cursors go round in some dozens of images.
constexpr std::size_t knownImages = 64;

} // namespace

CursorTracker::CursorTracker(Connection& connection, const PictureFormats& formats,
                             RawMotion& motion)
    : m_connection(connection)
    , m_formats(formats)
    , m_motion(motion)
    , m_events(connection.events.subscribe([this](const auto& event) { onEvent(event); }))
    , m_drained(connection.eventsDrained.subscribe([this] {
        if (std::exchange(m_hasImageChanged, false))
            m_imageChanged.emit();
    })) {
    xcb_xfixes_select_cursor_input(m_connection.get(), m_connection.root(),
                                   XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
}

Subscription CursorTracker::onChanged(std::function<void()> callback) {
    auto motion = m_motion.subscribe([this, callback] {
        m_position.reset();
        callback();
    });
    auto image = m_imageChanged.subscribe(callback);
    // What happened while nobody listened was not told.
    invalidate();
    return Subscription([moved = std::move(motion), imaged = std::move(image)]() mutable {
        moved.cancel();
        imaged.cancel();
    });
}

CursorTracker::Position CursorTracker::position() {
    if (m_position)
        return *m_position;
    const auto answer = m_connection.reply(
        xcb_query_pointer_reply, xcb_query_pointer(m_connection.get(), m_connection.root()));
    if (!answer)
        return {};
    m_position = Position{answer->root_x, answer->root_y, answer->child};
    return *m_position;
}

std::shared_ptr<const CursorImage> CursorTracker::image() {
    if (m_serial) {
        const auto known = std::ranges::find(m_known, *m_serial, &Known::serial);
        if (known != m_known.end())
            return known->image;
    }
    return fetch();
}

std::shared_ptr<const CursorImage> CursorTracker::fetch() {
    auto* const xcb = m_connection.get();
    const auto answer =
        m_connection.reply(xcb_xfixes_get_cursor_image_reply, xcb_xfixes_get_cursor_image(xcb));
    if (!answer || answer->width == 0 || answer->height == 0)
        return nullptr;

    auto image = std::make_shared<CursorImage>();
    image->width = answer->width;
    image->height = answer->height;
    image->hotX = answer->xhot;
    image->hotY = answer->yhot;
    const Pixmap pixmap(m_connection, m_connection.generateIdentifier());
    const GraphicsContext context(m_connection, m_connection.generateIdentifier());
    xcb_create_pixmap(xcb, 32, pixmap.get(), m_connection.root(), answer->width, answer->height);
    xcb_create_gc(xcb, context.get(), pixmap.get(), 0, nullptr);
    // The pixels come premultiplied, as RENDER wants them.
    xcb_put_image(
        xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap.get(), context.get(), answer->width, answer->height,
        0, 0, 0, 32,
        static_cast<std::uint32_t>(xcb_xfixes_get_cursor_image_cursor_image_length(answer.get())) *
            4,
        reinterpret_cast<const std::uint8_t*>(
            xcb_xfixes_get_cursor_image_cursor_image(answer.get())));
    image->picture = Picture(m_connection, m_connection.generateIdentifier());
    xcb_render_create_picture(xcb, image->picture.get(), pixmap.get(), m_formats.argb32(), 0,
                              nullptr);

    m_serial = answer->cursor_serial;
    m_known.push_back({answer->cursor_serial, image});
    if (m_known.size() > knownImages)
        m_known.pop_front();
    return image;
}

void CursorTracker::onEvent(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7F) !=
        m_connection.extensions().fixesFirstEvent + XCB_XFIXES_CURSOR_NOTIFY)
        return;
    const auto& notify = reinterpret_cast<const xcb_xfixes_cursor_notify_event_t&>(event);
    m_serial = notify.cursor_serial;
    // A new image comes with the window under the pointer: it may be another one now.
    m_position.reset();
    m_hasImageChanged = true;
}

} // namespace kestrove::x11
