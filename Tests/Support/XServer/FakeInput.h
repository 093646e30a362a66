#pragma once

#include <cstdint>

#include <xcb/xcb.h>

namespace kestrove::test {

/// What a device sends.
struct FakeInput {
    std::uint8_t type = 0;   ///< XCB_KEY_PRESS and its like
    std::uint8_t detail = 0; ///< the key code or the button; of a motion 0: to the place
    xcb_window_t root = XCB_WINDOW_NONE;
    int x = 0;
    int y = 0;
    std::uint8_t device = 0; ///< of an event of XInput: its number; others come from XTEST's own
};

/// Has the server take `input` as if a device had sent it: raw events are sent too, and grabs work.
/// The one request of XTEST that is needed; its library would be one more dependency.
void sendFakeInput(xcb_connection_t* connection, const FakeInput& input);

} // namespace kestrove::test
