#include "Platform/X11/Connection.h"

#include "Platform/X11/RequestOrder.h"

#include <array>
#include <fmt/format.h>
#include <utility>
#include <xcb/composite.h>
#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/res.h>
#include <xcb/shape.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

namespace kestrove::x11 {
namespace {

constexpr const char* errorDomain = "X11";

/// Asks for a version, which the protocol wants before anything else of an extension.
template <class Query, class Answer, class... Versions>
bool agreeOnVersion(xcb_connection_t* connection, Query query, Answer answer,
                    Versions... versions) {
    return Reply<std::remove_pointer_t<decltype(answer(connection, query(connection, versions...),
                                                       nullptr))>>(
               answer(connection, query(connection, versions...), nullptr)) != nullptr;
}

bool canTellProcesses(xcb_connection_t* connection) {
    constexpr std::uint8_t major = 1;
    constexpr std::uint8_t minor = 2; // earlier ones count resources only
    const auto* const data = xcb_get_extension_data(connection, &xcb_res_id);
    if (!data || !data->present)
        return false;
    const auto asked = xcb_res_query_version(connection, major, minor);
    const Reply<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(connection, asked, nullptr));
    return version && version->server_major == major && version->server_minor >= minor;
}

} // namespace

std::expected<std::unique_ptr<Connection>, PlatformError>
Connection::open(MainLoop& loop, DescriptorWatching& watching, std::string displayName) {
    auto connection =
        std::unique_ptr<Connection>(new Connection(loop, watching, std::move(displayName)));
    if (auto connected = connection->connect(); !connected)
        return std::unexpected(std::move(connected.error()));
    return connection;
}

Connection::Connection(MainLoop& loop, DescriptorWatching& watching, std::string displayName)
    : m_loop(loop)
    , m_watching(watching)
    , m_displayName(std::move(displayName))
    , m_tasks(loop) {}

Connection::~Connection() = default;

std::expected<void, PlatformError> Connection::connect() {
    int screenNumber = 0;
    Handle handle(
        xcb_connect(m_displayName.empty() ? nullptr : m_displayName.c_str(), &screenNumber));
    if (const int error = xcb_connection_has_error(handle.get()))
        return std::unexpected(PlatformError(errorDomain, error, "the X server cannot be reached"));
    auto extensions = queryExtensions(handle.get());
    if (!extensions)
        return std::unexpected(std::move(extensions.error()));

    auto screens = xcb_setup_roots_iterator(xcb_get_setup(handle.get()));
    for (; screenNumber > 0; --screenNumber)
        xcb_screen_next(&screens);

    m_readable.cancel();
    m_connection = std::move(handle);
    m_screen = screens.data;
    m_extensions = *extensions;
    m_atoms.clear();
    m_errorHandlers.clear();
    m_damageHandlers.clear();
    m_masks.clear();
    m_readAhead.clear();
    m_lifetime = std::make_shared<const char>();
    m_isOpen = true;
    m_readable =
        m_watching.watchReadable(xcb_get_file_descriptor(m_connection.get()), [this] { drain(); });
    return {};
}

std::expected<Extensions, PlatformError> Connection::queryExtensions(xcb_connection_t* connection) {
    struct Required {
        xcb_extension_t* extension;
        const char* name;
    };
    const auto required = std::to_array<Required>({
        {&xcb_composite_id, "Composite"},
        {&xcb_damage_id, "DAMAGE"},
        {&xcb_xfixes_id, "XFIXES"},
        {&xcb_render_id, "RENDER"},
        {&xcb_shape_id, "SHAPE"},
        {&xcb_randr_id, "RANDR"},
        {&xcb_input_id, "XInputExtension"},
    });
    for (const auto& each : required)
        xcb_prefetch_extension_data(connection, each.extension);
    xcb_prefetch_extension_data(connection, &xcb_res_id);
    for (const auto& each : required) {
        const auto* data = xcb_get_extension_data(connection, each.extension);
        if (!data || !data->present)
            return std::unexpected(PlatformError(
                errorDomain, 0, fmt::format("the X server lacks the extension {}", each.name)));
    }
    const bool agreed =
        agreeOnVersion(connection, xcb_xfixes_query_version, xcb_xfixes_query_version_reply, 5U,
                       0U) &&
        agreeOnVersion(connection, xcb_composite_query_version, xcb_composite_query_version_reply,
                       0U, 4U) &&
        agreeOnVersion(connection, xcb_damage_query_version, xcb_damage_query_version_reply, 1U,
                       1U) &&
        agreeOnVersion(connection, xcb_render_query_version, xcb_render_query_version_reply, 0U,
                       11U) &&
        agreeOnVersion(connection, xcb_shape_query_version, xcb_shape_query_version_reply) &&
        agreeOnVersion(connection, xcb_randr_query_version, xcb_randr_query_version_reply, 1U,
                       5U) &&
        agreeOnVersion(connection, xcb_input_xi_query_version, xcb_input_xi_query_version_reply,
                       std::uint16_t{2}, std::uint16_t{2});
    if (!agreed)
        return std::unexpected(
            PlatformError(errorDomain, 0, "the X server's extensions are too old"));
    const auto firstEvent = [&](xcb_extension_t* extension) {
        return xcb_get_extension_data(connection, extension)->first_event;
    };
    Extensions found;
    found.damageFirstEvent = firstEvent(&xcb_damage_id);
    found.fixesFirstEvent = firstEvent(&xcb_xfixes_id);
    found.randrFirstEvent = firstEvent(&xcb_randr_id);
    found.shapeFirstEvent = firstEvent(&xcb_shape_id);
    found.inputOpcode = xcb_get_extension_data(connection, &xcb_input_id)->major_opcode;
    found.tellsProcesses = canTellProcesses(connection);
    return found;
}

xcb_atom_t Connection::atom(std::string_view name) {
    if (const auto known = m_atoms.find(name); known != m_atoms.end())
        return known->second;
    const auto answer =
        reply(xcb_intern_atom_reply,
              xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.data()));
    if (!answer)
        return XCB_ATOM_NONE;
    return m_atoms.emplace(name, answer->atom).first->second;
}

void Connection::flush() {
    xcb_flush(m_connection.get());
    // Sending may have read events, which the descriptor would not tell of.
    drainSoon();
}

void Connection::synchronize() {
    (void)reply(xcb_get_input_focus_reply, xcb_get_input_focus(get()));
}

bool Connection::succeeded(xcb_void_cookie_t checked) {
    const Reply<xcb_generic_error_t> error(xcb_request_check(m_connection.get(), checked));
    drainSoon();
    return !error && xcb_connection_has_error(m_connection.get()) == 0;
}

void Connection::onError(xcb_void_cookie_t request, std::function<void()> failed) {
    m_errorHandlers.insert_or_assign(request.sequence, std::move(failed));
}

void Connection::drainSoon() {
    if (m_isDrainQueued)
        return;
    const bool hasNews = hasReadAhead() || xcb_connection_has_error(m_connection.get()) != 0;
    // A reply may have been read, too.
    if (hasNews || !m_awaitedReplies.empty())
        queueDrain();
}

bool Connection::hasReadAhead() {
    if (Reply<xcb_generic_event_t> event{xcb_poll_for_queued_event(m_connection.get())})
        m_readAhead.push_back(std::move(event));
    return !m_readAhead.empty();
}

void Connection::queueDrain() {
    if (std::exchange(m_isDrainQueued, true))
        return;
    m_tasks.post([this] {
        m_isDrainQueued = false;
        drain();
    });
}

void Connection::drain() {
    if (!m_isOpen)
        return;
    bool any = false;
    // One read: of what comes later, the descriptor tells.
    for (auto event = nextEvent(); event; event = nextReadEvent()) {
        any = true;
        if (event->response_type == 0)
            dispatchError(event->full_sequence);
        else
            dispatch(*event);
        if (!m_isOpen)
            return;
    }
    if (noticeLoss())
        return;
    if (any)
        eventsDrained.emit();
    takeReplies();
    if (m_isOpen)
        eventsActedOn.emit();
}

void Connection::takeReplies() {
    while (m_isOpen && !m_awaitedReplies.empty()) {
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        const auto sequence = m_awaitedReplies.front().sequence;
        const bool isThere = xcb_poll_for_reply(m_connection.get(), sequence, &reply, &error) != 0;
        // Looking for it reads what the server has sent, and the descriptor is silent then.
        if (hasReadAhead())
            queueDrain();
        if (!isThere)
            return;
        std::free(error);
        const auto answered = std::move(m_awaitedReplies.front().answered);
        m_awaitedReplies.pop_front();
        answered(Reply<void>(reply));
    }
}

Reply<xcb_generic_event_t> Connection::nextEvent() {
    if (m_readAhead.empty())
        return Reply<xcb_generic_event_t>(xcb_poll_for_event(m_connection.get()));
    return nextReadEvent();
}

Reply<xcb_generic_event_t> Connection::nextReadEvent() {
    if (m_readAhead.empty())
        return Reply<xcb_generic_event_t>(xcb_poll_for_queued_event(m_connection.get()));
    auto event = std::move(m_readAhead.front());
    m_readAhead.pop_front();
    return event;
}

void Connection::dispatch(const xcb_generic_event_t& event) {
    // Requests up to this event's sequence have been worked through: those without an error
    // succeeded.
    while (!m_errorHandlers.empty() &&
           !isSince(m_errorHandlers.begin()->first, event.full_sequence))
        m_errorHandlers.erase(m_errorHandlers.begin());
    if ((event.response_type & 0x7F) == m_extensions.damageFirstEvent + XCB_DAMAGE_NOTIFY)
        dispatchDamage(event);
    else
        events.emit(event);
}

void Connection::dispatchDamage(const xcb_generic_event_t& event) {
    const auto& notify = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
    if (const auto found = m_damageHandlers.find(notify.damage); found != m_damageHandlers.end()) {
        const auto told = found->second;
        (*told)(notify.area, event.full_sequence);
    }
}

Subscription Connection::onDamage(xcb_damage_damage_t damage, DamageHandler told) {
    m_damageHandlers[damage] = std::make_shared<const DamageHandler>(std::move(told));
    // On a later connection the number is another object's.
    return Subscription([this, damage, connection = lifetime()] {
        if (!connection.expired())
            m_damageHandlers.erase(damage);
    });
}

void Connection::dispatchError(std::uint32_t sequence) {
    if (auto handler = m_errorHandlers.extract(sequence))
        handler.mapped()();
}

void Connection::selectEvents(xcb_window_t window, std::uint32_t mask) {
    auto& counts = m_masks[window];
    for (std::uint32_t bit = 1; bit != 0; bit <<= 1U) {
        if (mask & bit)
            ++counts[bit];
    }
    applyMask(window);
}

void Connection::deselectEvents(xcb_window_t window, std::uint32_t mask) {
    const auto known = m_masks.find(window);
    if (known == m_masks.end())
        return;
    for (auto count = known->second.begin(); count != known->second.end();) {
        const bool ended = (mask & count->first) && --count->second == 0;
        count = ended ? known->second.erase(count) : std::next(count);
    }
    applyMask(window);
    if (known->second.empty())
        m_masks.erase(known);
}

void Connection::applyMask(xcb_window_t window) {
    std::uint32_t mask = 0;
    for (const auto& [bit, count] : m_masks[window])
        mask |= bit;
    xcb_change_window_attributes(get(), window, XCB_CW_EVENT_MASK, &mask);
}

bool Connection::noticeLoss() {
    if (!m_isOpen || xcb_connection_has_error(m_connection.get()) == 0)
        return false;
    m_isOpen = false;
    m_lifetime.reset();
    m_readable.cancel();
    m_errorHandlers.clear();
    for (const auto& [sequence, answered] : std::exchange(m_awaitedReplies, {}))
        answered(nullptr);
    lost.emit();
    return true;
}

std::expected<void, PlatformError> Connection::reopen() {
    if (m_isOpen)
        return {};
    if (auto connected = connect(); !connected)
        return connected;
    opened.emit();
    return {};
}

} // namespace kestrove::x11
