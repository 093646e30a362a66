#pragma once

#include "Async/Subscription.h"
#include "Platform/Linux/DescriptorWatching.h"
#include "Platform/X11/Reply.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <xcb/xcb.h>

namespace kestrove::x11 {

enum class InstanceClaim : std::uint8_t {
    /// There is no other one. While this object lives, later starts are told of here.
    first,
    /// Another one runs, and has taken note of this start if it was to.
    handedOver,
    /// Another one runs but says nothing, or the server does not.
    unanswered,
};

/// Who wants the application to run.
enum class StartedBy : std::uint8_t {
    user,
    /// At login, perhaps twice: by its entry there and because it ran when the last session ended.
    session,
};

/// One running instance of an application for each user and X server. The instance owns a selection
/// of the server, which a later start asks for the conversion "OPEN": that needs no bus, and the
/// server itself takes the selection from an instance that has crashed.
///
/// It has a connection of its own, so that it can be asked before anything else of the program is
/// there. It ends with that connection.
///
/// Thread: main.
class SingleInstance {
public:
    /// `name` is the application's, in reverse-DNS.
    explicit SingleInstance(const std::string& name);
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;
    ~SingleInstance() = default;

    /// Waits at most `patience` for the other instance, which may be just starting, or ending. A
    /// start by the session asks nothing of it.
    [[nodiscard]] InstanceClaim claim(std::chrono::milliseconds patience, StartedBy startedBy);

    /// `started` is called from the main loop for every later start by the user, also for those
    /// that came before this call; `takenOver` when another instance, which started at the same
    /// moment, has become the first one: this one has to end. Once, after the claim of the first
    /// instance. `watching` outlives this.
    void listen(DescriptorWatching& watching, std::function<void()> started,
                std::function<void()> takenOver);

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;
    /// The owner of the selection: another instance, or none, and then it is ours.
    [[nodiscard]] xcb_window_t otherOwnerOrTake() const;
    [[nodiscard]] xcb_window_t owner() const;
    /// Whether the owner has answered; absent when it has gone instead.
    [[nodiscard]] std::optional<bool> ask(xcb_window_t other, Clock::time_point deadline) const;
    [[nodiscard]] Reply<xcb_generic_event_t> nextEvent(Clock::time_point deadline) const;
    void readEvents();
    void answer(const xcb_selection_request_event_t& request);

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_atom_t m_selection = XCB_ATOM_NONE;
    xcb_atom_t m_open = XCB_ATOM_NONE;
    std::function<void()> m_started;
    std::function<void()> m_takenOver;
    Subscription m_readable;
};

} // namespace kestrove::x11
