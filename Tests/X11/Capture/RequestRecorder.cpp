#include "Tests/X11/Capture/RequestRecorder.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include <xcb/xcbext.h>

namespace kestrove::test {
namespace {

/// Of the pieces that RECORD tells.
enum Category : std::uint8_t { fromServer = 0, fromClient = 1, startOfData = 4 };

constexpr std::uint8_t replyCode = 1;
constexpr std::uint8_t firstExtensionOpcode = 128;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

[[noreturn]] void giveUp(const char* why) {
    std::fprintf(stderr, "RequestRecorder: %s\n", why);
    std::abort();
}

template <class Request>
Request as(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < sizeof(Request))
        giveUp("a request is too short");
    Request request;
    std::memcpy(&request, bytes.data(), sizeof request);
    return request;
}

template <class Request>
std::vector<xcb_rectangle_t> rectanglesBehind(std::span<const std::uint8_t> bytes) {
    const auto rest = bytes.subspan(sizeof(Request));
    std::vector<xcb_rectangle_t> rectangles(rest.size() / sizeof(xcb_rectangle_t));
    if (!rectangles.empty())
        std::memcpy(rectangles.data(), rest.data(), rectangles.size() * sizeof(xcb_rectangle_t));
    return rectangles;
}

std::int64_t pixelsOf(const x11::Region& region) {
    std::int64_t pixels = 0;
    for (const auto& box : region.boxes())
        pixels += std::int64_t{box.x2 - box.x1} * (box.y2 - box.y1);
    return pixels;
}

} // namespace

Traffic& Traffic::operator+=(const Traffic& other) {
    requests += other.requests;
    bytes += other.bytes;
    draws += other.draws;
    pixels += other.pixels;
    replies += other.replies;
    events += other.events;
    return *this;
}

RequestRecorder::RequestRecorder(const std::string& displayName, xcb_connection_t* watched)
    : m_watched(watched)
    , m_steering(xcb_connect(displayName.c_str(), nullptr))
    , m_recorded(xcb_connect(displayName.c_str(), nullptr))
    , m_context(xcb_generate_id(m_steering))
    , m_renderOpcode(xcb_get_extension_data(m_steering, &xcb_render_id)->major_opcode) {
    const auto* const extension = xcb_get_extension_data(m_recorded, &xcb_record_id);
    if (!extension || !extension->present)
        giveUp("the server has no RECORD");
    start();
}

RequestRecorder::~RequestRecorder() {
    xcb_disconnect(m_recorded);
    xcb_disconnect(m_steering);
}

void RequestRecorder::start() {
    xcb_record_range_t everything{};
    everything.core_requests = {1, firstExtensionOpcode - 1};
    everything.core_replies = {1, firstExtensionOpcode - 1};
    everything.ext_requests = {{firstExtensionOpcode, 255}, {0, 65535}};
    everything.ext_replies = {{firstExtensionOpcode, 255}, {0, 65535}};
    everything.delivered_events = {2, 127};
    // A client is named by anything of its own that exists.
    const xcb_record_client_spec_t client = xcb_generate_id(m_watched);
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(m_watched)).data->root;
    const std::unique_ptr<xcb_generic_error_t, Free> failedToMake(
        xcb_request_check(m_watched, xcb_create_pixmap_checked(m_watched, 1, client, root, 1, 1)));
    const std::unique_ptr<xcb_generic_error_t, Free> failed(
        xcb_request_check(m_steering, xcb_record_create_context_checked(m_steering, m_context, 0, 1,
                                                                        1, &client, &everything)));
    if (failedToMake || failed)
        giveUp("the server does not record that client");
    m_stream = xcb_record_enable_context(m_recorded, m_context);
    readUntil(startOfData);
    xcb_free_pixmap(m_watched, client);
    (void)take();
}

void RequestRecorder::readUntil(std::uint8_t category) {
    while (read() != category) {
    }
}

std::uint8_t RequestRecorder::read() {
    xcb_flush(m_recorded);
    const std::unique_ptr<xcb_record_enable_context_reply_t, Free> piece(
        xcb_record_enable_context_reply(m_recorded, m_stream, nullptr));
    if (!piece)
        giveUp("the server has stopped recording");
    const std::span bytes(
        xcb_record_enable_context_data(piece.get()),
        static_cast<std::size_t>(xcb_record_enable_context_data_length(piece.get())));
    if (piece->category == fromClient)
        onRequests(bytes);
    else if (piece->category == fromServer)
        onTold(bytes);
    return piece->category;
}

Traffic RequestRecorder::take() {
    // The mark is a request of no effect and a question, whose answer makes the server hand out
    // what it has recorded.
    m_mark = Mark::awaited;
    xcb_no_operation(m_watched);
    const std::unique_ptr<xcb_get_input_focus_reply_t, Free> answer(
        xcb_get_input_focus_reply(m_watched, xcb_get_input_focus(m_watched), nullptr));
    while (m_mark != Mark::answered)
        (void)read();
    return std::exchange(m_traffic, {});
}

void RequestRecorder::onRequests(std::span<const std::uint8_t> bytes) {
    while (bytes.size() >= 4) {
        std::uint16_t words = 0;
        std::memcpy(&words, &bytes[2], sizeof words);
        std::size_t length = std::size_t{4} * words;
        if (length == 0 && bytes.size() >= 8) { // a big request
            std::uint32_t manyWords = 0;
            std::memcpy(&manyWords, &bytes[4], sizeof manyWords);
            length = std::size_t{4} * manyWords;
        }
        if (length < 4 || length > bytes.size())
            giveUp("what was recorded is no whole request");
        onRequest(bytes.first(length));
        bytes = bytes.subspan(length);
    }
}

void RequestRecorder::onRequest(std::span<const std::uint8_t> request) {
    if (m_mark == Mark::awaited && request[0] == XCB_NO_OPERATION)
        m_mark = Mark::seen;
    if (m_mark == Mark::seen)
        return;
    ++m_traffic.requests;
    m_traffic.bytes += static_cast<std::int64_t>(request.size());
    switch (request[0]) {
    case XCB_COPY_AREA: {
        const auto copy = as<xcb_copy_area_request_t>(request);
        ++m_traffic.draws;
        m_traffic.pixels += std::int64_t{copy.width} * copy.height;
        return;
    }
    case XCB_CLEAR_AREA: {
        const auto clear = as<xcb_clear_area_request_t>(request);
        ++m_traffic.draws;
        m_traffic.pixels += std::int64_t{clear.width} * clear.height;
        return;
    }
    case XCB_POLY_FILL_RECTANGLE:
        ++m_traffic.draws;
        m_traffic.pixels +=
            pixelsOf(x11::Region(rectanglesBehind<xcb_poly_fill_rectangle_request_t>(request)));
        return;
    case XCB_PUT_IMAGE: {
        const auto put = as<xcb_put_image_request_t>(request);
        ++m_traffic.draws;
        m_traffic.pixels += std::int64_t{put.width} * put.height;
        return;
    }
    default:
        if (request[0] == m_renderOpcode)
            onRender(request);
    }
}

void RequestRecorder::onRender(std::span<const std::uint8_t> request) {
    switch (request[1]) {
    case XCB_RENDER_SET_PICTURE_CLIP_RECTANGLES:
        m_clips[as<xcb_render_set_picture_clip_rectangles_request_t>(request).picture] =
            x11::Region(
                rectanglesBehind<xcb_render_set_picture_clip_rectangles_request_t>(request));
        return;
    case XCB_RENDER_FREE_PICTURE:
        m_clips.erase(as<xcb_render_free_picture_request_t>(request).picture);
        return;
    case XCB_RENDER_COMPOSITE: {
        const auto draw = as<xcb_render_composite_request_t>(request);
        x11::Region painted(draw.dst_x, draw.dst_y, draw.width, draw.height);
        if (const auto clip = m_clips.find(draw.dst); clip != m_clips.end())
            painted &= clip->second;
        ++m_traffic.draws;
        m_traffic.pixels += pixelsOf(painted);
        return;
    }
    case XCB_RENDER_FILL_RECTANGLES:
        ++m_traffic.draws;
        m_traffic.pixels +=
            pixelsOf(x11::Region(rectanglesBehind<xcb_render_fill_rectangles_request_t>(request)));
        return;
    default:
        return;
    }
}

void RequestRecorder::onTold(std::span<const std::uint8_t> bytes) {
    constexpr std::size_t unit = 32; // bytes of an event, and of the beginning of a reply
    while (bytes.size() >= unit) {
        const auto head = as<xcb_generic_reply_t>(bytes);
        // Of events, the server records this much, however long they are.
        const std::size_t length =
            unit + (head.response_type == replyCode ? std::size_t{4} * head.length : 0);
        if (length > bytes.size())
            giveUp("what was recorded is no whole reply");
        if (head.response_type != replyCode)
            ++m_traffic.events;
        else if (m_mark == Mark::seen)
            m_mark = Mark::answered;
        else
            ++m_traffic.replies;
        bytes = bytes.subspan(length);
    }
}

} // namespace kestrove::test
