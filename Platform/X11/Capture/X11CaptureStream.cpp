#include "Platform/X11/Capture/X11CaptureStream.h"

#include "Platform/X11/Capture/SourceContents.h"

#include <utility>

namespace kestrove::x11 {
namespace {

PlatformError connectionLost() {
    return {"X11", XCB_CONN_ERROR, "the connection to the X server was lost"};
}

} // namespace

Region X11CaptureStream::PaintedCursor::region() const {
    return {x, y, image->width, image->height};
}

X11CaptureStream::X11CaptureStream(Connection& connection, MonitorLayout& monitors,
                                   std::shared_ptr<CaptureServices> services, ContentFilter filter,
                                   StreamConfiguration configuration, StopHandler stopped)
    : m_connection(connection)
    , m_monitors(monitors)
    , m_services(std::move(services))
    , m_filter(std::move(filter))
    , m_configuration(configuration)
    , m_stopped(std::move(stopped))
    , m_tasks(connection.loop()) {}

X11CaptureStream::~X11CaptureStream() {
    end();
}

std::expected<void, PlatformError>
X11CaptureStream::addScreenOutput(std::shared_ptr<SerialQueue> queue, SampleHandler handler) {
    m_queue = std::move(queue);
    m_handler = std::move(handler);
    return {};
}

Task<std::expected<void, PlatformError>> X11CaptureStream::startCapture() {
    if (!m_services || !m_connection.isOpen())
        co_return std::unexpected(connectionLost());
    if (auto opened = openContent(m_filter); !opened)
        co_return opened;
    m_isRunning = true;
    m_acted = m_connection.eventsActedOn.subscribe([this] {
        if (std::exchange(m_isFrameDue, false))
            makeFrame();
    });
    m_lost = m_connection.lost.subscribe([this] { fail(connectionLost()); });
    m_room->onReleased = [this] {
        // Whoever has shown the frame has sent all this already, in one piece with the drawing.
        m_connection.flush();
        // Not here: the sample may be let go of in the middle of being shown.
        if (std::exchange(m_isWaitingForRoom, false))
            m_nextFrame = m_connection.loop().runAfter(Seconds(0), [this] { makeFrame(); });
    };
    followCursor();
    makeWholeFrame();
    co_return Outcome();
}

Task<std::expected<void, PlatformError>> X11CaptureStream::stopCapture() {
    end();
    co_return Outcome();
}

Task<std::expected<void, PlatformError>>
X11CaptureStream::updateContentFilter(ContentFilter filter) {
    if (!m_isRunning)
        co_return std::unexpected(connectionLost());
    if (auto opened = openContent(std::move(filter)); !opened)
        co_return opened;
    m_isWholeFrameDue = true;
    m_pacer.restart();
    m_isFrameDue = false;
    // A configuration that belongs to it may follow, and has its frame at once.
    m_nextFrame = m_connection.loop().runAfter(Seconds(0), [this] { makeFrame(); });
    co_return Outcome();
}

Task<std::expected<void, PlatformError>>
X11CaptureStream::updateConfiguration(StreamConfiguration configuration) {
    if (!m_isRunning)
        co_return std::unexpected(connectionLost());
    m_configuration = configuration;
    followCursor();
    makeWholeFrame();
    co_return Outcome();
}

X11CaptureStream::Outcome X11CaptureStream::openContent(ContentFilter filter) {
    auto opened = openSourceContent(m_connection, m_monitors, *m_services, filter);
    if (!opened)
        return std::unexpected(std::move(opened.error()));
    letGoOfSurface();
    m_formerContent = std::exchange(m_content, std::move(*opened));
    // Windows that were redirected for it are copied back, which the first frame need not wait for.
    m_tasks.post([this] { letGoOfFormerContent(); });
    m_filter = std::move(filter);
    followContent();
    return {};
}

void X11CaptureStream::letGoOfSurface() {
    // The layer may still show it, and draw it again.
    if (const auto surface = std::exchange(m_surface, nullptr); surface && surface.use_count() > 1)
        surface->detach();
    m_refused.cancel();
    m_cursor.reset();
}

void X11CaptureStream::letGoOfFormerContent() {
    if (std::exchange(m_formerContent, nullptr))
        m_connection.flush();
}

void X11CaptureStream::followContent() {
    m_aboutToChange = m_content->aboutToChange.subscribe([this] {
        if (m_surface)
            m_surface->bringUpToDate();
    });
    m_changed = m_content->changed.subscribe([this] { requestFrame(); });
    m_gone = m_content->gone.subscribe([this](const PlatformError& error) { fail(error); });
    m_monitorsChanged = m_monitors.changed.subscribe([this] { followDisplay(); });
}

void X11CaptureStream::followCursor() {
    m_cursorChanged = m_configuration.showsCursor
                          ? m_services->cursor.onChanged([this] { requestFrame(); })
                          : Subscription();
}

void X11CaptureStream::followDisplay() {
    const auto* const display = std::get_if<DisplayFilter>(&m_filter);
    if (!display)
        return;
    if (const auto* const monitor = m_monitors.find(display->displayID))
        m_content->setArea(monitor->rectangle);
    else {
        // Whatever is on the screen there now, it is not the display.
        if (m_surface)
            m_surface->forget();
        fail(displayGone());
    }
}

void X11CaptureStream::makeWholeFrame() {
    m_isWholeFrameDue = true;
    // A new target is shown at once, however short ago the last frame was.
    m_pacer.restart();
    makeFrame();
}

void X11CaptureStream::requestFrame() {
    if (!m_isRunning || m_nextFrame.isPending())
        return;
    auto& loop = m_connection.loop();
    const auto wait = m_pacer.wait(loop.now());
    // The timer is for a change that no event has told.
    m_isFrameDue = wait == Seconds(0);
    m_nextFrame = loop.runAfter(wait, [this] { makeFrame(); });
}

void X11CaptureStream::makeFrame() {
    m_isFrameDue = false;
    m_nextFrame.cancel();
    if (!m_isRunning || !m_handler)
        return;
    if (m_room->samplesOnTheirWay >= m_configuration.queueDepth) {
        m_isWaitingForRoom = true;
        return;
    }
    const auto extent = m_content->extent();
    if (!m_surface || m_surface->width() != extent.width || m_surface->height() != extent.height) {
        // Brought up to date before the content became another.
        if (m_surface)
            m_surface->forget();
        m_surface = std::make_shared<FrameSurface>(m_connection, m_services->formats, extent.width,
                                                   extent.height);
        m_refused = m_surface->refused().subscribe([this] { fail(noMemory()); });
        m_isWholeFrameDue = true;
        m_cursor.reset();
    }
    const auto cursor = currentCursor();
    auto damage = m_content->takeDamage();
    if (std::exchange(m_isWholeFrameDue, false))
        damage = m_surface->bounds();
    if (cursor != m_cursor) {
        for (const auto& each : {m_cursor, cursor}) {
            if (each)
                damage += each->region();
        }
    }
    damage &= m_surface->bounds();
    m_cursor = cursor;
    if (damage.isEmpty())
        return;
    m_surface->invalidate(*this, damage);
    handOn(std::move(damage));
}

std::optional<X11CaptureStream::PaintedCursor> X11CaptureStream::currentCursor() {
    if (!m_configuration.showsCursor)
        return std::nullopt;
    const auto position = m_services->cursor.position();
    const auto place = m_content->placeUnderPointer(position.topLevel);
    const auto image = m_services->cursor.image();
    if (!place || !image)
        return std::nullopt;
    const int x = position.x - place->x;
    const int y = position.y - place->y;
    const auto extent = m_content->extent();
    // The cursor belongs to what its hot spot is over: it does not hang in from next door.
    if (x < 0 || y < 0 || x >= extent.width || y >= extent.height)
        return std::nullopt;
    return PaintedCursor{image, x - image->hotX, y - image->hotY};
}

Region X11CaptureStream::paintedAtOnce(const Region& region) const {
    auto part = m_content->paintedAtOnce(region);
    if (m_cursor)
        part -= m_cursor->region();
    return part;
}

void X11CaptureStream::paint(const PaintTarget& target, const Region& region) {
    m_content->paint(target, region);
    if (!m_cursor)
        return;
    // Only on what was just painted: elsewhere it would be blended twice.
    const auto under = region & m_cursor->region();
    if (under.isEmpty())
        return;
    const auto& image = *m_cursor->image;
    setClip(m_connection, target.picture, under.translated(target.x, target.y));
    xcb_render_composite(
        m_connection.get(), XCB_RENDER_PICT_OP_OVER, image.picture.get(), XCB_NONE, target.picture,
        0, 0, 0, 0, static_cast<std::int16_t>(m_cursor->x + target.x),
        static_cast<std::int16_t>(m_cursor->y + target.y), static_cast<std::uint16_t>(image.width),
        static_cast<std::uint16_t>(image.height));
}

void X11CaptureStream::handOn(Region damage) {
    const Seconds interval(static_cast<double>(m_configuration.minimumFrameInterval.value) /
                           m_configuration.minimumFrameInterval.timescale);
    m_pacer.made(m_connection.loop().now(), interval);
    ++m_room->samplesOnTheirWay;
    auto released = [room = m_room, &loop = m_connection.loop()](FrameSample::Content content) {
        // The surface belongs to the main thread; so does the count.
        auto release = [room, held = std::move(content)] {
            --room->samplesOnTheirWay;
            if (room->onReleased)
                room->onReleased();
        };
        if (loop.isMainThread())
            release();
        else
            loop.post(std::move(release));
    };
    FrameSample::Content content{m_surface, std::move(damage), ++m_number};
    auto sample = std::make_shared<const FrameSample>(
        std::move(content), m_configuration.generation, std::move(released));
    m_queue->dispatch([handler = m_handler, handed = std::move(sample)]() mutable {
        handler(std::move(handed));
    });
}

void X11CaptureStream::end() {
    m_isRunning = false;
    m_room->onReleased = nullptr;
    m_nextFrame.cancel();
    m_aboutToChange.cancel();
    m_changed.cancel();
    m_gone.cancel();
    m_cursorChanged.cancel();
    m_monitorsChanged.cancel();
    m_lost.cancel();
    m_acted.cancel();
    letGoOfSurface();
    letGoOfFormerContent();
    // Windows that were redirected for this stream are let go of now, not with the next request.
    if (std::exchange(m_content, nullptr))
        m_connection.flush();
}

void X11CaptureStream::fail(PlatformError error) {
    if (!m_isRunning)
        return;
    m_isRunning = false;
    // Told by the content itself, which must not go before its call has returned.
    m_tasks.post([this, told = std::move(error)] {
        end();
        if (m_stopped)
            m_stopped(told);
    });
}

} // namespace kestrove::x11
