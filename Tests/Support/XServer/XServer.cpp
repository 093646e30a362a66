#include "Tests/Support/XServer/XServer.h"

#include "Tests/Support/Processes/LinePipe.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/FakeInput.h"
#include "Tests/Support/XServer/RawRequest.h"
#include "Tests/Support/XServer/Reply.h"

#include <algorithm>
#include <csignal>
#include <span>
#include <utility>
#include <vector>

#include <fmt/core.h>
#include <xcb/randr.h>

namespace kestrove::test {

namespace {

std::pair<int, int> boundingSize(const std::vector<Monitor>& monitors) {
    int width = 0;
    int height = 0;
    for (const auto& [name, geometry] : monitors) {
        width = std::max(width, geometry.x + geometry.width);
        height = std::max(height, geometry.y + geometry.height);
    }
    return {width, height};
}

} // namespace

std::vector<Monitor> twoMonitors() {
    return {{"LEFT", {0, 0, 1280, 800}}, {"RIGHT", {1280, 0, 1280, 800}}};
}

XServer::XServer(const std::filesystem::path& logs, const std::vector<Monitor>& monitors) {
    LinePipe displayNumber;
    const auto [width, height] = boundingSize(monitors);
    m_process = std::make_unique<ChildProcess>(ChildProcess::Options{
        .command = {"Xvfb", "-displayfd", std::to_string(displayNumber.writeEnd()), "-screen", "0",
                    fmt::format("{}x{}x24", width, height), "-nolisten", "tcp", "-noreset", "-dpi",
                    "96", "+extension", "Composite", "+extension", "RANDR", "+extension", "RENDER"},
        .environment = {},
        .log = logs / "Xvfb.log",
        .keptDescriptors = {displayNumber.writeEnd()}});
    const std::string number = displayNumber.readLine();
    if (number.empty()) {
        giveUp("Xvfb did not start: " + m_process->logTail());
    }
    m_displayName = ":" + number;
    int preferred = 0;
    m_connection = xcb_connect(m_displayName.c_str(), &preferred);
    if (xcb_connection_has_error(m_connection) != 0) {
        giveUp("cannot connect to " + m_displayName);
    }
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    for (const Monitor& monitor : monitors) {
        setMonitor(monitor);
    }
}

XServer::~XServer() {
    xcb_disconnect(m_connection);
    m_process->stop();
}

xcb_atom_t XServer::atom(std::string_view name) const {
    const auto cookie =
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Reply reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool XServer::hasProperty(xcb_window_t window, std::string_view name) const {
    const auto cookie = xcb_get_property(m_connection, 0, window, atom(name), XCB_ATOM_ANY, 0, 0);
    const Reply reply(xcb_get_property_reply(m_connection, cookie, nullptr));
    return reply && reply->type != XCB_ATOM_NONE;
}

std::uint32_t XServer::propertyItem(xcb_window_t window, std::string_view name) const {
    const auto cookie = xcb_get_property(m_connection, 0, window, atom(name), XCB_ATOM_ANY, 0, 1);
    const Reply reply(xcb_get_property_reply(m_connection, cookie, nullptr));
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 4) {
        return 0;
    }
    return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
}

void XServer::setMonitor(const Monitor& monitor) {
    const auto known = std::ranges::find(m_monitors, monitor.name, &Monitor::name);
    if (known == m_monitors.end()) {
        m_monitors.push_back(monitor);
    } else {
        *known = monitor;
    }
    sendMonitor(monitor);
}

void XServer::removeMonitor(std::string_view name) {
    const auto removed = std::ranges::find(m_monitors, name, &Monitor::name);
    if (removed == m_monitors.end() || m_monitors.size() == 1) {
        giveUp(fmt::format("monitor {} is unknown or the last one", name));
    }
    const bool ownedOutput = removed == m_monitors.begin();
    m_monitors.erase(removed);
    if (ownedOutput) {
        sendMonitor(m_monitors.front()); // the server drops a monitor that loses its only output
    } else {
        xcb_randr_delete_monitor(m_connection, root(), atom(name));
        sync(m_connection);
    }
}

void XServer::sendMonitor(const Monitor& monitor) {
    const Reply resources(xcb_randr_get_screen_resources_current_reply(
        m_connection, xcb_randr_get_screen_resources_current(m_connection, root()), nullptr));
    if (!resources || resources->num_outputs == 0) {
        giveUp("the X server has no RandR output");
    }
    const bool ownsOutput = monitor.name == m_monitors.front().name;
    // libxcb 1.15 sends this one with a wrong length and thereby closes the connection.
    struct {
        xcb_window_t window;
        xcb_randr_monitor_info_t info;
        xcb_randr_output_t output;
    } request{};
    request.window = root();
    const xcb_rectangle_t& geometry = monitor.geometry;
    request.info.name = atom(monitor.name);
    request.info.primary = ownsOutput ? 1 : 0;
    request.info.nOutput = ownsOutput ? 1 : 0;
    request.info.x = geometry.x;
    request.info.y = geometry.y;
    request.info.width = geometry.width;
    request.info.height = geometry.height;
    request.info.width_in_millimeters = geometry.width * 254U / 960U; // 96 dots an inch
    request.info.height_in_millimeters = geometry.height * 254U / 960U;
    request.output = *xcb_randr_get_screen_resources_current_outputs(resources.get());
    auto body = std::as_bytes(std::span(&request, 1));
    if (!ownsOutput) {
        body = body.first(body.size() - sizeof request.output);
    }
    // A known name must be deleted first; nobody shall see the moment in between.
    xcb_grab_server(m_connection);
    const auto deletion = xcb_randr_delete_monitor_checked(m_connection, root(), request.info.name);
    const Reply unknown(xcb_request_check(m_connection, deletion));
    const auto cookie = sendRawRequest(m_connection, xcb_randr_id, XCB_RANDR_SET_MONITOR, body);
    if (const Reply error(xcb_request_check(m_connection, cookie)); error) {
        giveUp(fmt::format("monitor {}: X error {}", monitor.name, error->error_code));
    }
    xcb_ungrab_server(m_connection);
    sync(m_connection);
}

void XServer::movePointer(int x, int y) {
    sendFakeInput(m_connection, {.type = XCB_MOTION_NOTIFY, .root = root(), .x = x, .y = y});
    const auto cookie = xcb_query_pointer(m_connection, root());
    const Reply reply(xcb_query_pointer_reply(m_connection, cookie, nullptr));
    if (!reply || reply->root_x != x || reply->root_y != y) {
        giveUp(fmt::format("the pointer is not at {},{}", x, y));
    }
}

void XServer::click(std::uint8_t button) {
    sendFakeInput(m_connection, {.type = XCB_BUTTON_PRESS, .detail = button});
    sendFakeInput(m_connection, {.type = XCB_BUTTON_RELEASE, .detail = button});
    sync(m_connection);
}

void XServer::press(Key key) {
    sendKey(XCB_KEY_PRESS, key);
    sendKey(XCB_KEY_RELEASE, key);
    sync(m_connection);
}

void XServer::press(Key modifier, Key key) {
    sendKey(XCB_KEY_PRESS, modifier);
    press(key);
    sendKey(XCB_KEY_RELEASE, modifier);
    sync(m_connection);
}

void XServer::sendKey(std::uint8_t type, Key key) {
    sendFakeInput(m_connection, {.type = type, .detail = keyCode(key)});
}

xcb_keycode_t XServer::keyCode(Key key) const {
    const auto* const setup = xcb_get_setup(m_connection);
    const auto first = setup->min_keycode;
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - first + 1);
    const Reply mapping(xcb_get_keyboard_mapping_reply(
        m_connection, xcb_get_keyboard_mapping(m_connection, first, count), nullptr));
    if (mapping) {
        const std::span symbols(xcb_get_keyboard_mapping_keysyms(mapping.get()),
                                std::size_t{count} * mapping->keysyms_per_keycode);
        const auto found = std::ranges::find(symbols, static_cast<xcb_keysym_t>(key));
        if (found != symbols.end()) {
            const auto index = static_cast<std::size_t>(found - symbols.begin());
            return static_cast<xcb_keycode_t>(first + index / mapping->keysyms_per_keycode);
        }
    }
    giveUp(fmt::format("no key has the symbol {:#x}", static_cast<xcb_keysym_t>(key)));
}

void XServer::kill() {
    m_process->signal(SIGKILL);
    if (!m_process->waitForExit(patience)) {
        giveUp("the X server does not die");
    }
}

} // namespace kestrove::test
