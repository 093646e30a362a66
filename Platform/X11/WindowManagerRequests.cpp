#include "Platform/X11/WindowManagerRequests.h"

#include "Platform/X11/Reply.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>

namespace kestrove::x11 {

namespace {

// WM_SIZE_HINTS as the Inter-Client Communication Conventions lay it out: 18 numbers of 32 bits.
constexpr std::size_t sizeHintsLength = 18;
constexpr std::size_t flagsField = 0;
constexpr std::size_t minimumAspectField = 11;
constexpr std::size_t maximumAspectField = 13;
constexpr std::uint32_t hasAspectFlag = 1U << 7;

constexpr std::uint32_t sourceIsApplication = 1;
constexpr std::uint32_t sourceIsPager = 2;
constexpr std::uint32_t removeState = 0;
constexpr std::uint32_t addState = 1;
constexpr std::uint32_t allWorkspaces = 0xffffffff;

std::uint32_t whole(double value) {
    return static_cast<std::uint32_t>(std::lround(value));
}

} // namespace

WindowManagerRequests::WindowManagerRequests(xcb_connection_t* connection)
    : m_connection(connection)
    , m_root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root) {}

void WindowManagerRequests::setContentAspectRatios(NativeViewHandle window, Size narrowest,
                                                   Size widest) {
    const auto target = static_cast<xcb_window_t>(window);
    std::array<std::uint32_t, sizeHintsLength> hints{};
    const auto asked = xcb_get_property(m_connection, 0, target, XCB_ATOM_WM_NORMAL_HINTS,
                                        XCB_ATOM_WM_SIZE_HINTS, 0, sizeHintsLength);
    const Reply<xcb_get_property_reply_t> before(
        xcb_get_property_reply(m_connection, asked, nullptr));
    if (before && before->format == 32)
        std::memcpy(hints.data(), xcb_get_property_value(before.get()),
                    static_cast<std::size_t>(xcb_get_property_value_length(before.get())));
    hints[flagsField] |= hasAspectFlag;
    hints[minimumAspectField] = whole(narrowest.width);
    hints[minimumAspectField + 1] = whole(narrowest.height);
    hints[maximumAspectField] = whole(widest.width);
    hints[maximumAspectField + 1] = whole(widest.height);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, target, XCB_ATOM_WM_NORMAL_HINTS,
                        XCB_ATOM_WM_SIZE_HINTS, 32, sizeHintsLength, hints.data());
    xcb_flush(m_connection);
}

void WindowManagerRequests::joinAllWorkspaces(NativeViewHandle window) {
    xcb_client_message_data_t data{};
    data.data32[0] = allWorkspaces;
    data.data32[1] = sourceIsPager;
    sendToWindowManager(static_cast<xcb_window_t>(window), "_NET_WM_DESKTOP", data);
    xcb_flush(m_connection);
}

void WindowManagerRequests::joinLists(NativeViewHandle window) {
    xcb_client_message_data_t data{};
    data.data32[0] = removeState;
    data.data32[1] = atom("_NET_WM_STATE_SKIP_TASKBAR");
    data.data32[2] = atom("_NET_WM_STATE_SKIP_PAGER");
    data.data32[3] = sourceIsApplication;
    sendToWindowManager(static_cast<xcb_window_t>(window), "_NET_WM_STATE", data);
    xcb_flush(m_connection);
}

void WindowManagerRequests::setStacking(NativeViewHandle window, Stacking stacking) {
    xcb_client_message_data_t data{};
    data.data32[0] = stacking == Stacking::above ? addState : removeState;
    data.data32[1] = atom("_NET_WM_STATE_ABOVE");
    data.data32[3] = sourceIsApplication;
    sendToWindowManager(static_cast<xcb_window_t>(window), "_NET_WM_STATE", data);
    xcb_flush(m_connection);
}

void WindowManagerRequests::activate(NativeViewHandle window) {
    const auto target = static_cast<xcb_window_t>(window);
    if (hasWindowManager()) {
        xcb_client_message_data_t data{};
        data.data32[0] = sourceIsPager;
        sendToWindowManager(target, "_NET_ACTIVE_WINDOW", data);
    } else {
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(m_connection, target, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        // Fails for a window that cannot be seen; the toolkit need not hear of that.
        const auto focused = xcb_set_input_focus_checked(m_connection, XCB_INPUT_FOCUS_PARENT,
                                                         target, XCB_CURRENT_TIME);
        std::free(xcb_request_check(m_connection, focused));
    }
    xcb_flush(m_connection);
}

xcb_atom_t WindowManagerRequests::atom(std::string_view name) const {
    const auto asked =
        xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, asked, nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

bool WindowManagerRequests::hasWindowManager() const {
    // The window manager is the one who takes what others ask for their windows; no two can.
    const auto asked = xcb_get_window_attributes(m_connection, m_root);
    const Reply<xcb_get_window_attributes_reply_t> root(
        xcb_get_window_attributes_reply(m_connection, asked, nullptr));
    return root && (root->all_event_masks & XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT) != 0;
}

void WindowManagerRequests::sendToWindowManager(xcb_window_t window, std::string_view message,
                                                xcb_client_message_data_t data) const {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(message);
    event.data = data;
    xcb_send_event(m_connection, 0, m_root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
}

std::optional<std::string> whyUnreachable() {
    const char* const display = std::getenv("DISPLAY");
    if (!display || !*display)
        return "DISPLAY is not set";
    auto* const connection = xcb_connect(nullptr, nullptr);
    const int error = xcb_connection_has_error(connection);
    xcb_disconnect(connection);
    if (error == 0)
        return std::nullopt;
    const auto* const why = error == XCB_CONN_CLOSED_PARSE_ERR ? "is no display's name"
                            : error == XCB_CONN_CLOSED_INVALID_SCREEN
                                ? "names a screen that the server does not have"
                                : "does not answer or does not let us in";
    return fmt::format("DISPLAY={} {}", display, why);
}

} // namespace kestrove::x11
