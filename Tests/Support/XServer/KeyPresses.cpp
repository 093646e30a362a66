#include "Tests/Support/XServer/KeyPresses.h"

#include "Tests/Support/XServer/FakeInput.h"
#include "Tests/Support/XServer/Reply.h"

#include <ranges>

#include <xcb/xinput.h>

namespace kestrove::test {

namespace {

void send(xcb_connection_t* connection, std::uint8_t type, xcb_keycode_t key) {
    sendFakeInput(connection, {.type = type, .detail = key});
}

} // namespace

void keyDown(xcb_connection_t* connection, xcb_keycode_t key) {
    send(connection, XCB_KEY_PRESS, key);
    sync(connection);
}

void keyUp(xcb_connection_t* connection, xcb_keycode_t key) {
    send(connection, XCB_KEY_RELEASE, key);
    sync(connection);
}

void pressTogether(xcb_connection_t* connection, const std::vector<xcb_keycode_t>& keys) {
    for (const auto key : keys)
        send(connection, XCB_KEY_PRESS, key);
    for (const auto key : keys | std::views::reverse)
        send(connection, XCB_KEY_RELEASE, key);
    sync(connection);
}

bool isGrabbedKeyPress(const xcb_generic_event_t& event) {
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    return (event.response_type & 0x7FU) == XCB_GE_GENERIC &&
           generic.event_type == XCB_INPUT_KEY_PRESS;
}

} // namespace kestrove::test
