#include "Platform/X11/Capture/WindowContent.h"

#include "Platform/X11/Capture/FrameSurface.h"
#include "Platform/X11/RequestOrder.h"

#include <algorithm>
#include <utility>
#include <xcb/shape.h>

namespace kestrove::x11 {
namespace {

constexpr std::uint32_t windowEvents =
    XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
/// No event tells that an ancestor was unmapped but the ancestor's own.
constexpr std::uint32_t ancestorEvents = XCB_EVENT_MASK_STRUCTURE_NOTIFY;

/// The protocol's own number for "no such window".
constexpr long badWindow = XCB_WINDOW;

} // namespace

std::expected<std::unique_ptr<WindowContent>, PlatformError>
WindowContent::open(Connection& connection, CaptureServices& services, xcb_window_t window) {
    auto* const xcb = connection.get();
    // Selected before reading, so that nothing is missed in between.
    connection.selectEvents(window, windowEvents);
    xcb_shape_select_input(xcb, window, 1);
    const auto attributes =
        connection.reply(xcb_get_window_attributes_reply, xcb_get_window_attributes(xcb, window));
    const auto askedGeometry = xcb_get_geometry(xcb, window);
    const auto geometry = connection.reply(xcb_get_geometry_reply, askedGeometry);
    const auto format = attributes ? services.formats.ofVisual(attributes->visual) : std::nullopt;
    if (!attributes || !geometry || !format) {
        connection.deselectEvents(window, windowEvents);
        return std::unexpected(PlatformError("X11", badWindow, "the window has gone"));
    }
    return std::unique_ptr<WindowContent>(new WindowContent(connection, services, window, *format,
                                                            *geometry, askedGeometry.sequence));
}

WindowContent::WindowContent(Connection& connection, CaptureServices& services, xcb_window_t window,
                             PictureFormats::Format format,
                             const xcb_get_geometry_reply_t& geometry, std::uint32_t sizeAsked)
    : m_connection(connection)
    , m_services(services)
    , m_lifetime(connection.lifetime())
    , m_window(window)
    , m_width(geometry.width)
    , m_height(geometry.height)
    , m_border(geometry.border_width)
    , m_sizeAsked(sizeAsked)
    , m_redirected(connection, format, window, geometry.border_width)
    , m_damaged(m_redirected.damaged.subscribe([this](const Region& region) {
        m_damage += region.translated(-offsetX(), -offsetY());
        m_hasNews = true;
    }))
    , m_events(connection.events.subscribe([this](const auto& event) { onEvent(event); }))
    , m_drained(connection.eventsDrained.subscribe([this] {
        if (m_isGone)
            gone.emit(PlatformError("X11", badWindow, "the window was closed"));
        else if (std::exchange(m_hasNews, false))
            changed.emit();
    })) {
    followAncestors();
    readShadow();
    readShape();
    m_damage = Region(0, 0, extent().width, extent().height);
    connection.flush();
}

WindowContent::~WindowContent() {
    if (m_lifetime.expired())
        return;
    leaveAncestors();
    m_connection.deselectEvents(m_window, windowEvents);
}

void WindowContent::followAncestors() {
    auto parent = m_window;
    while (true) {
        const auto tree =
            m_connection.reply(xcb_query_tree_reply, xcb_query_tree(m_connection.get(), parent));
        if (!tree || tree->parent == XCB_NONE || tree->parent == m_connection.root())
            return;
        parent = tree->parent;
        m_ancestors.push_back(parent);
        m_connection.selectEvents(parent, ancestorEvents);
    }
}

void WindowContent::leaveAncestors() {
    for (const auto ancestor : std::exchange(m_ancestors, {}))
        m_connection.deselectEvents(ancestor, ancestorEvents);
}

void WindowContent::readShadow() {
    const auto property = m_connection.reply(
        xcb_get_property_reply,
        xcb_get_property(m_connection.get(), 0, m_window, m_connection.atom("_GTK_FRAME_EXTENTS"),
                         XCB_ATOM_CARDINAL, 0, 4));
    m_shadow = {};
    if (!property || xcb_get_property_value_length(property.get()) != 16)
        return;
    const auto* extents = static_cast<const std::uint32_t*>(xcb_get_property_value(property.get()));
    const Shadow told{static_cast<int>(extents[0]), static_cast<int>(extents[1]),
                      static_cast<int>(extents[2]), static_cast<int>(extents[3])};
    // What leaves nothing of the window is no shadow.
    if (told.left + told.right < m_width && told.top + told.bottom < m_height)
        m_shadow = told;
}

void WindowContent::readShape() {
    m_shape.reset();
    auto* const xcb = m_connection.get();
    const auto extents =
        m_connection.reply(xcb_shape_query_extents_reply, xcb_shape_query_extents(xcb, m_window));
    if (!extents || !extents->bounding_shaped)
        return;
    const auto answer =
        m_connection.reply(xcb_shape_get_rectangles_reply,
                           xcb_shape_get_rectangles(xcb, m_window, XCB_SHAPE_SK_BOUNDING));
    if (!answer)
        return;
    const auto count =
        static_cast<std::size_t>(xcb_shape_get_rectangles_rectangles_length(answer.get()));
    m_shape = Region(std::span(xcb_shape_get_rectangles_rectangles(answer.get()), count));
}

SourceContent::Extent WindowContent::extent() const {
    return {std::max(1, m_width - m_shadow.left - m_shadow.right),
            std::max(1, m_height - m_shadow.top - m_shadow.bottom)};
}

std::optional<SourceContent::Place>
WindowContent::placeUnderPointer(xcb_window_t topLevelUnderPointer) {
    if (m_services.stack.topLevelOf(m_window) != topLevelUnderPointer)
        return std::nullopt;
    if (m_place)
        return m_place;
    const auto origin = m_connection.reply(
        xcb_translate_coordinates_reply,
        xcb_translate_coordinates(m_connection.get(), m_window, m_connection.root(), 0, 0));
    if (origin)
        m_place = Place{origin->dst_x + m_shadow.left, origin->dst_y + m_shadow.top};
    return m_place;
}

Region WindowContent::takeDamage() {
    m_redirected.acceptDamage();
    return std::exchange(m_damage, {}) & Region(0, 0, extent().width, extent().height);
}

Region WindowContent::paintedAtOnce(const Region& region) const {
    return m_redirected.format().hasAlpha || m_shape ? Region() : region;
}

void WindowContent::paint(const PaintTarget& target, const Region& region) {
    auto* const xcb = m_connection.get();
    auto part = region;
    if (m_redirected.format().hasAlpha || m_shape) {
        // What the window does not cover, or lets through, is black.
        const auto black = region.translated(target.x, target.y);
        const auto rectangles = black.rectangles();
        setClip(m_connection, target.picture, black);
        xcb_render_fill_rectangles(xcb, XCB_RENDER_PICT_OP_SRC, target.picture, {0, 0, 0, 0xFFFF},
                                   static_cast<std::uint32_t>(rectangles.size()),
                                   rectangles.data());
    }
    if (m_shape)
        part &= m_shape->translated(-m_shadow.left, -m_shadow.top);
    if (part.isEmpty())
        return;
    const auto box = part.extents();
    setClip(m_connection, target.picture, part.translated(target.x, target.y));
    xcb_render_composite(
        xcb, m_redirected.format().hasAlpha ? XCB_RENDER_PICT_OP_OVER : XCB_RENDER_PICT_OP_SRC,
        m_redirected.picture(), XCB_NONE, target.picture,
        static_cast<std::int16_t>(box.x + offsetX()), static_cast<std::int16_t>(box.y + offsetY()),
        0, 0, static_cast<std::int16_t>(box.x + target.x),
        static_cast<std::int16_t>(box.y + target.y), box.width, box.height);
}

void WindowContent::renewAll() {
    m_place.reset();
    m_damage = Region(0, 0, extent().width, extent().height);
    m_hasNews = true;
}

bool WindowContent::isFollowed(xcb_window_t window) const {
    return window == m_window || std::ranges::find(m_ancestors, window) != m_ancestors.end();
}

void WindowContent::onEvent(const xcb_generic_event_t& event) {
    if (m_sizeAsked && isSince(event.full_sequence, *m_sizeAsked))
        m_sizeAsked.reset();
    const int type = event.response_type & 0x7F;
    switch (type) {
    case XCB_CONFIGURE_NOTIFY:
        onConfigure(reinterpret_cast<const xcb_configure_notify_event_t&>(event));
        return;
    case XCB_MAP_NOTIFY: {
        const auto& map = reinterpret_cast<const xcb_map_notify_event_t&>(event);
        // The window, or one around it, is viewable anew: the server has made a new pixmap.
        if (map.event == map.window && isFollowed(map.window)) {
            aboutToChange.emit();
            m_redirected.redirectAnew();
            renewAll();
        }
        return;
    }
    case XCB_DESTROY_NOTIFY: {
        const auto& destroy = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
        m_isGone = m_isGone || destroy.window == m_window;
        return;
    }
    case XCB_REPARENT_NOTIFY: {
        const auto& reparent = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
        if (reparent.event != reparent.window || !isFollowed(reparent.window))
            return;
        aboutToChange.emit();
        leaveAncestors();
        followAncestors();
        renewAll();
        return;
    }
    case XCB_PROPERTY_NOTIFY: {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (property.window != m_window || property.atom != m_connection.atom("_GTK_FRAME_EXTENTS"))
            return;
        aboutToChange.emit();
        readShadow();
        renewAll();
        return;
    }
    default:
        break;
    }
    if (type == m_connection.extensions().shapeFirstEvent + XCB_SHAPE_NOTIFY) {
        const auto& shape = reinterpret_cast<const xcb_shape_notify_event_t&>(event);
        if (shape.affected_window != m_window || shape.shape_kind != XCB_SHAPE_SK_BOUNDING)
            return;
        aboutToChange.emit();
        readShape();
        renewAll();
    }
}

void WindowContent::onConfigure(const xcb_configure_notify_event_t& event) {
    if (event.event != event.window || !isFollowed(event.window))
        return;
    m_place.reset();
    const bool isSent = (event.response_type & 0x80) != 0;
    // Of an earlier capture of the same window, more may have come that was not told.
    if (event.window != m_window || isSent || m_sizeAsked)
        return;
    if (event.width == m_width && event.height == m_height && event.border_width == m_border)
        return;
    aboutToChange.emit();
    m_width = event.width;
    m_height = event.height;
    m_border = event.border_width;
    readShadow();
    m_redirected.rename(m_border);
    renewAll();
}

} // namespace kestrove::x11
