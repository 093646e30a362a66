#pragma once

#include "Async/MainLoop.h"
#include "Async/Signal.h"
#include "Async/TaskScope.h"
#include "Desktop/PlatformError.h"
#include "Platform/Linux/DescriptorWatching.h"
#include "Platform/X11/Reply.h"

#include <cstdint>
#include <deque>
#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <xcb/damage.h>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// First event numbers and opcodes of the extensions that we use.
struct Extensions {
    std::uint8_t damageFirstEvent = 0;
    std::uint8_t fixesFirstEvent = 0;
    std::uint8_t randrFirstEvent = 0;
    std::uint8_t shapeFirstEvent = 0;
    std::uint8_t inputOpcode = 0;
    /// Whether it can be asked for the processes of its clients. Not every server can.
    bool tellsProcesses = false;
};

/// The one connection to the X server that carries capture, drawing and every question about the
/// desktop: request order alone keeps them in step.
///
/// X errors never end the process: the error of a request somebody waits for is that request's
/// result, others are ignored, since on X any window may go at any time. When the server or the
/// connection goes, `lost` is told once; `reopen` tries to get a new one, and `opened` tells
/// everybody to set up anew (all identifiers of the old connection are void then).
///
/// Thread: main. Lifetime: outlives everything that uses it.
class Connection {
public:
    /// `displayName` empty: as the environment says. Fails when the server cannot be reached or
    /// lacks an extension, and says which.
    static std::expected<std::unique_ptr<Connection>, PlatformError>
    open(MainLoop& loop, DescriptorWatching& watching, std::string displayName);

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /// Takes a reply as the server has sent it, or null.
    using ReplyHandler = std::function<void(Reply<void> reply)>;

    [[nodiscard]] MainLoop& loop() { return m_loop; }
    /// For requests. Valid also while the connection is lost: requests are then thrown away.
    [[nodiscard]] xcb_connection_t* get() { return m_connection.get(); }
    [[nodiscard]] const xcb_screen_t& screen() const { return *m_screen; }
    [[nodiscard]] xcb_window_t root() const { return m_screen->root; }
    [[nodiscard]] const Extensions& extensions() const { return m_extensions; }
    [[nodiscard]] xcb_atom_t atom(std::string_view name);

    /// Expires with the present connection to the server: what was created on it is gone then.
    [[nodiscard]] std::weak_ptr<const void> lifetime() const { return m_lifetime; }

    [[nodiscard]] std::uint32_t generateIdentifier() { return xcb_generate_id(m_connection.get()); }

    /// Sends what was requested. Call it once at the end of a piece of work, not after each
    /// request.
    void flush();

    /// Waits for a reply; null on an error or a lost connection. Not for the frame path.
    /// Example: `reply(xcb_query_tree_reply, xcb_query_tree(c.get(), w))`.
    template <class ReplyFunction, class Cookie>
    [[nodiscard]] auto reply(ReplyFunction function, Cookie cookie) {
        xcb_generic_error_t* error = nullptr;
        auto* const raw = function(m_connection.get(), cookie, &error);
        std::free(error);
        drainSoon();
        return Reply<std::remove_pointer_t<decltype(raw)>>(raw);
    }

    /// Sends what was requested, and has the reply to `cookie` told to `answered`, from the main
    /// loop: null on an error or a lost connection. For replies that are worth not waiting for.
    template <class Cookie>
    void onReply(Cookie cookie, ReplyHandler answered) {
        m_awaitedReplies.push_back({cookie.sequence, std::move(answered)});
        flush();
    }

    /// Waits for the outcome of a checked request: whether it succeeded. Not for the frame path.
    [[nodiscard]] bool succeeded(xcb_void_cookie_t checked);

    /// Returns when the server has worked through everything that was requested. Not for the frame
    /// path.
    void synchronize();

    /// Whether a request (not a checked one) failed is told to `failed` when the server says so.
    /// There is no word of success; the entry is dropped when a later event proves it.
    void onError(xcb_void_cookie_t request, std::function<void()> failed);

    /// Adds to what our connection is told of a window; others' choices and our own earlier ones
    /// stay.
    void selectEvents(xcb_window_t window, std::uint32_t mask);
    /// Takes back one earlier `selectEvents` of the same mask.
    void deselectEvents(xcb_window_t window, std::uint32_t mask);

    /// Whether the connection works.
    [[nodiscard]] bool isOpen() const { return m_isOpen; }
    /// Tries to get a connection again after it was lost.
    std::expected<void, PlatformError> reopen();

    /// `area` in the coordinates of the drawable, `request` the last one that the server had worked
    /// through.
    using DamageHandler = std::function<void(const xcb_rectangle_t& area, std::uint32_t request)>;
    /// Has what this damage object reports told to `told`, in its order among the events. Nothing
    /// else is as frequent, and it is nobody else's business.
    [[nodiscard]] Subscription onDamage(xcb_damage_damage_t damage, DamageHandler told);

    /// Every other event, in order. Generic (XInput) events included.
    Signal<xcb_generic_event_t> events;
    /// All events that had arrived were told; the time to act on what they add up to.
    Signal<> eventsDrained;
    /// Everybody has acted on what had arrived: the time for what comes of all of it, as a frame.
    Signal<> eventsActedOn;
    Signal<> lost;
    Signal<> opened;

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    using Handle = std::unique_ptr<xcb_connection_t, Disconnect>;
    using ErrorHandlers = std::map<std::uint32_t, std::function<void()>>;
    struct AwaitedReply {
        unsigned int sequence;
        ReplyHandler answered;
    };
    /// How often each bit of a window's event mask was asked for.
    using MaskCounts = std::map<std::uint32_t, int>;

    Connection(MainLoop& loop, DescriptorWatching& watching, std::string displayName);
    std::expected<void, PlatformError> connect();
    std::expected<Extensions, PlatformError> queryExtensions(xcb_connection_t* connection);
    void drain();
    void drainSoon();
    /// Whether there are events that the descriptor will not tell of.
    [[nodiscard]] bool hasReadAhead();
    void queueDrain();
    void takeReplies();
    Reply<xcb_generic_event_t> nextEvent();
    /// Of those that were read already.
    Reply<xcb_generic_event_t> nextReadEvent();
    void dispatch(const xcb_generic_event_t& event);
    void dispatchDamage(const xcb_generic_event_t& event);
    void dispatchError(std::uint32_t sequence);
    void applyMask(xcb_window_t window);
    bool noticeLoss();

    MainLoop& m_loop;
    DescriptorWatching& m_watching;
    std::string m_displayName;
    Handle m_connection;
    const xcb_screen_t* m_screen = nullptr;
    Extensions m_extensions;
    std::shared_ptr<const char> m_lifetime;
    bool m_isOpen = false;
    bool m_isDrainQueued = false;
    /// Events that were read while something else was waited for.
    std::deque<Reply<xcb_generic_event_t>> m_readAhead;
    std::map<std::string, xcb_atom_t, std::less<>> m_atoms;
    ErrorHandlers m_errorHandlers;
    /// Shared, so that one may end its own subscription.
    std::unordered_map<xcb_damage_damage_t, std::shared_ptr<const DamageHandler>> m_damageHandlers;
    /// In the order of the requests, which is that of the replies.
    std::deque<AwaitedReply> m_awaitedReplies;
    std::map<xcb_window_t, MaskCounts> m_masks;
    Subscription m_readable;
    TaskScope m_tasks;
};

} // namespace kestrove::x11
