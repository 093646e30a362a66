#include "Platform/X11/Capture/DisplayContent.h"

#include "Platform/X11/Capture/FrameSurface.h"
#include "Platform/X11/RequestOrder.h"

#include <algorithm>
#include <utility>

namespace kestrove::x11 {

DisplayContent::DisplayContent(Connection& connection, CaptureServices& services,
                               xcb_rectangle_t area, std::vector<xcb_window_t> excluded)
    : m_connection(connection)
    , m_lifetime(connection.lifetime())
    , m_services(services)
    , m_area(area)
    , m_excluded(std::move(excluded))
    , m_root(connection, connection.generateIdentifier())
    , m_drawn(connection, connection.generateIdentifier())
    , m_events(connection.events.subscribe([this](const auto& event) { onEvent(event); }))
    , m_drained(connection.eventsDrained.subscribe([this] { onDrained(); }))
    , m_stackChanged(services.stack.changed.subscribe([this] { arrange(); }))
    , m_ownWindowsChanged(services.neverCaptured.changed.subscribe([this] { arrange(); })) {
    auto* const xcb = connection.get();
    const auto format = services.formats.ofVisual(connection.screen().root_visual);
    const std::uint32_t inferiors = XCB_SUBWINDOW_MODE_INCLUDE_INFERIORS;
    xcb_render_create_picture(xcb, m_root.get(), connection.root(),
                              format ? format->identifier : XCB_NONE, XCB_RENDER_CP_SUBWINDOW_MODE,
                              &inferiors);
    xcb_xfixes_create_region(xcb, m_drawn.get(), 0, nullptr);
    connection.selectEvents(connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    arrange();
}

DisplayContent::~DisplayContent() {
    if (m_lifetime.expired())
        return;
    m_connection.deselectEvents(m_connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
}

void DisplayContent::setArea(xcb_rectangle_t area) {
    if (area.x == m_area.x && area.y == m_area.y && area.width == m_area.width &&
        area.height == m_area.height)
        return;
    m_area = area;
    m_background.reset();
    m_isNew = true;
    arrange();
}

std::optional<SourceContent::Place> DisplayContent::placeUnderPointer(xcb_window_t /*topLevel*/) {
    return Place{m_area.x, m_area.y};
}

void DisplayContent::arrange() {
    std::set<xcb_window_t> excluded;
    const auto exclude = [&](xcb_window_t window) {
        if (const auto topLevel = m_services.stack.topLevelOf(window))
            excluded.insert(topLevel);
    };
    std::ranges::for_each(m_excluded, exclude);
    std::ranges::for_each(m_services.neverCaptured.windows(), exclude);
    auto next = composeDisplay(m_services.stack.windows(), excluded, displayRegion(),
                               m_services.stack.isComposited(), m_services.formats);
    if (!m_isNew && next == m_composition)
        return;
    if (m_isNew)
        m_damage = displayRegion();
    else
        m_damage += m_composition.covered + next.covered;
    m_composition = std::move(next);
    updateBeneath();
    watchScreen();
    m_isNew = false;
    m_hasNews = true;
    m_connection.flush();
    // Made outside of a batch of events, the news would wait for the next one.
    if (changed.hasSubscribers())
        onDrained();
}

void DisplayContent::watchScreen() {
    if (m_composition.direct.isEmpty()) {
        m_rootDamageTold.cancel();
        m_rootDamage.reset();
        m_isRootDamaged = false;
        m_beginOfWatch.reset();
        return;
    }
    auto* const xcb = m_connection.get();
    const bool isNew = !m_rootDamage;
    if (isNew) {
        m_rootDamage = DamageMonitor(m_connection, m_connection.generateIdentifier());
        m_rootDamageTold = m_connection.onDamage(
            m_rootDamage.get(), [this](const xcb_rectangle_t& area, std::uint32_t request) {
                onRootDamage(area, request);
            });
        xcb_damage_create(xcb, m_rootDamage.get(), m_connection.root(),
                          XCB_DAMAGE_REPORT_LEVEL_DELTA_RECTANGLES);
    }
    // What stayed changed where it was not shown directly is told from now on.
    const auto accepted = xcb_damage_subtract(xcb, m_rootDamage.get(), XCB_NONE, XCB_NONE).sequence;
    if (isNew)
        m_beginOfWatch = accepted;
}

void DisplayContent::updateBeneath() {
    std::map<xcb_window_t, Beneath> kept;
    for (const auto& each : m_composition.windows) {
        const auto& window = each.window;
        auto entry = std::move(m_beneath[window.window]);
        if (!entry.redirected) {
            entry.redirected = std::make_unique<RedirectedWindow>(m_connection, each.format,
                                                                  window.window, window.border);
            entry.damaged = entry.redirected->damaged.subscribe(
                [this, key = window.window](const Region& region) {
                    const auto& known = m_beneath.at(key);
                    m_damage += region.translated(known.seen.x, known.seen.y) &
                                m_composition.covered & known.seen.region();
                    m_damagedBeneath.insert(key);
                    m_hasNews = true;
                });
        } else if (entry.seen.width != window.width || entry.seen.height != window.height ||
                   entry.seen.border != window.border) {
            entry.redirected->rename(window.border);
        }
        auto interest = each.visible.translated(-window.x, -window.y);
        if (interest != entry.interest) {
            entry.interest = std::move(interest);
            entry.redirected->setInterest(entry.interest);
        }
        entry.seen = window;
        kept.emplace(window.window, std::move(entry));
    }
    // Windows that are no longer beneath are let go of here.
    m_beneath = std::move(kept);
    if (m_composition.background.isEmpty())
        m_background.reset();
    else if (!m_background)
        m_background = std::make_unique<RootBackground>(m_connection, m_services.formats, m_area,
                                                        m_services.stack.isComposited());
}

void DisplayContent::noticeProgress(std::uint32_t request) {
    // Events come in the order of the requests.
    if (m_beginOfWatch && isSince(request, *m_beginOfWatch))
        m_beginOfWatch.reset();
}

void DisplayContent::onRootDamage(const xcb_rectangle_t& area, std::uint32_t request) {
    noticeProgress(request);
    if (m_beginOfWatch)
        return;
    const auto direct = Region(area) & m_composition.direct;
    if (direct.isEmpty())
        return;
    m_damage += direct;
    m_isRootDamaged = true;
    m_hasNews = true;
}

void DisplayContent::onEvent(const xcb_generic_event_t& event) {
    noticeProgress(event.full_sequence);
    const int type = event.response_type & 0x7F;
    if (type == XCB_MAP_NOTIFY) {
        const auto& map = reinterpret_cast<const xcb_map_notify_event_t&>(event);
        const auto beneath = m_beneath.find(map.window);
        if (map.event != m_connection.root() || beneath == m_beneath.end())
            return;
        // It was away for so short a time that the stack looks the same.
        beneath->second.redirected->redirectAnew();
        m_damage += beneath->second.seen.region() & m_composition.covered;
        m_hasNews = true;
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const auto& property = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (property.window != m_connection.root() || m_composition.background.isEmpty() ||
            !RootBackground::isWallpaperProperty(m_connection, property.atom))
            return;
        m_background = std::make_unique<RootBackground>(m_connection, m_services.formats, m_area,
                                                        m_services.stack.isComposited());
        m_damage += m_composition.background;
        m_hasNews = true;
    }
}

void DisplayContent::onDrained() {
    if (std::exchange(m_hasNews, false) && hasDamage())
        changed.emit();
}

Region DisplayContent::takeDamage() {
    // All of it: what a part leaves would be told again, each time. Of what is not ours to show, as
    // our own drawing, there is one word after each frame and then none, since it stays changed.
    if (std::exchange(m_isRootDamaged, false))
        xcb_damage_subtract(m_connection.get(), m_rootDamage.get(), XCB_NONE, XCB_NONE);
    for (const auto window : std::exchange(m_damagedBeneath, {})) {
        if (const auto beneath = m_beneath.find(window); beneath != m_beneath.end())
            beneath->second.redirected->acceptDamage();
    }
    return std::exchange(m_damage, {}).translated(-m_area.x, -m_area.y);
}

void DisplayContent::paint(const PaintTarget& target, const Region& region) {
    const int dx = target.x - m_area.x;
    const int dy = target.y - m_area.y;
    const auto root = region.translated(m_area.x, m_area.y);
    const auto direct = root & m_composition.direct;
    if (!direct.isEmpty()) {
        const auto clip = direct.translated(dx, dy);
        const auto box = clip.extents();
        setClip(m_connection, target.picture, clip);
        xcb_render_composite(m_connection.get(), XCB_RENDER_PICT_OP_SRC, m_root.get(), XCB_NONE,
                             target.picture, static_cast<std::int16_t>(box.x - dx),
                             static_cast<std::int16_t>(box.y - dy), 0, 0, box.x, box.y, box.width,
                             box.height);
        if (target.window != XCB_NONE)
            tellOfDrawing(target.window, clip);
    }
    const auto covered = root & m_composition.covered;
    if (covered.isEmpty())
        return;
    paintBackground(target, covered);
    for (const auto& window : m_composition.windows)
        paintWindow(target, window, covered);
}

void DisplayContent::tellOfDrawing(xcb_window_t window, const Region& drawn) {
    const auto rectangles = drawn.rectangles();
    xcb_xfixes_set_region(m_connection.get(), m_drawn.get(),
                          static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    xcb_damage_add(m_connection.get(), window, m_drawn.get());
}

Region DisplayContent::paintedAtOnce(const Region& region) const {
    if (!m_composition.isBlended())
        return region;
    return region & m_composition.direct.translated(-m_area.x, -m_area.y);
}

void DisplayContent::paintBackground(const PaintTarget& target, const Region& root) {
    const int dx = target.x - m_area.x;
    const int dy = target.y - m_area.y;
    const auto part = root & m_composition.background;
    if (part.isEmpty() || !m_background)
        return;
    const auto clip = part.translated(dx, dy);
    const auto box = clip.extents();
    setClip(m_connection, target.picture, clip);
    xcb_render_composite(m_connection.get(), XCB_RENDER_PICT_OP_SRC, m_background->picture(),
                         XCB_NONE, target.picture,
                         static_cast<std::int16_t>(box.x - dx - m_background->originX()),
                         static_cast<std::int16_t>(box.y - dy - m_background->originY()), 0, 0,
                         box.x, box.y, box.width, box.height);
}

void DisplayContent::paintWindow(const PaintTarget& target, const ComposedWindow& composed,
                                 const Region& root) {
    const int dx = target.x - m_area.x;
    const int dy = target.y - m_area.y;
    const auto part = root & composed.visible;
    const auto beneath = m_beneath.find(composed.window.window);
    if (part.isEmpty() || beneath == m_beneath.end())
        return;
    auto* const xcb = m_connection.get();
    const auto clip = part.translated(dx, dy);
    const auto box = clip.extents();
    Picture opacity;
    if (composed.isBlended && composed.window.opacity < 1) {
        opacity = Picture(m_connection, m_connection.generateIdentifier());
        const auto alpha = static_cast<std::uint16_t>(composed.window.opacity * 0xFFFF);
        xcb_render_create_solid_fill(xcb, opacity.get(), {0, 0, 0, alpha});
    }
    setClip(m_connection, target.picture, clip);
    xcb_render_composite(xcb, composed.isBlended ? XCB_RENDER_PICT_OP_OVER : XCB_RENDER_PICT_OP_SRC,
                         beneath->second.redirected->picture(), opacity.get(), target.picture,
                         static_cast<std::int16_t>(box.x - dx - composed.window.x),
                         static_cast<std::int16_t>(box.y - dy - composed.window.y), 0, 0, box.x,
                         box.y, box.width, box.height);
}

} // namespace kestrove::x11
