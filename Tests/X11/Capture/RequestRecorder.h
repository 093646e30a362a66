#pragma once

#include "Platform/X11/Capture/Region.h"

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <xcb/record.h>
#include <xcb/render.h>
#include <xcb/xcb.h>

namespace kestrove::test {

/// What a client asked of the X server and what it was told.
struct Traffic {
    int requests = 0;
    std::int64_t bytes = 0;  ///< of the requests
    int draws = 0;           ///< requests that paint something
    std::int64_t pixels = 0; ///< that they paint, as far as clips let them
    int replies = 0;         ///< each of them may have been waited for
    int events = 0;          ///< each of them may have woken the client

    Traffic& operator+=(const Traffic& other);
};

/// Watches another connection through the server's RECORD extension, from outside: what counts is
/// what has reached the server and what the server has sent, whoever in that client asked for it.
///
/// Ends the test program when the server does not record.
class RequestRecorder {
public:
    /// `watched` stays open as long as this. What it has sent and not flushed counts too.
    RequestRecorder(const std::string& displayName, xcb_connection_t* watched);
    ~RequestRecorder();
    RequestRecorder(const RequestRecorder&) = delete;
    RequestRecorder& operator=(const RequestRecorder&) = delete;

    /// What there was since the last `take`, none of it itself. What was requested is sent and
    /// worked through before.
    [[nodiscard]] Traffic take();

private:
    void start();
    void readUntil(std::uint8_t category);
    /// Returns the category of what was read.
    std::uint8_t read();
    void onRequests(std::span<const std::uint8_t> bytes);
    void onRequest(std::span<const std::uint8_t> request);
    void onRender(std::span<const std::uint8_t> request);
    void onTold(std::span<const std::uint8_t> bytes);

    xcb_connection_t* m_watched;
    /// RECORD wants two: one to steer, one that nothing but what was recorded comes through.
    xcb_connection_t* m_steering;
    xcb_connection_t* m_recorded;
    xcb_record_context_t m_context;
    xcb_record_enable_context_cookie_t m_stream{};
    std::uint8_t m_renderOpcode;
    std::map<xcb_render_picture_t, x11::Region> m_clips;
    Traffic m_traffic;
    enum class Mark : std::uint8_t { awaited, seen, answered } m_mark = Mark::answered;
};

} // namespace kestrove::test
