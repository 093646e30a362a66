#include "Tests/Support/XServer/KeyPresses.h"

#include "Tests/Support/XServer/FakeInput.h"
#include "Tests/Support/XServer/Reply.h"

#include <ranges>

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

} // namespace kestrove::test
