#include "Tests/Support/XServer/FakeInput.h"

#include "Tests/Support/XServer/RawRequest.h"

#include <cstddef>
#include <span>

namespace kestrove::test {

void sendFakeInput(xcb_connection_t* connection, const FakeInput& input) {
    struct Request {
        std::uint8_t type;
        std::uint8_t detail;
        std::uint16_t padding1;
        std::uint32_t time;
        xcb_window_t root;
        std::uint32_t padding2[2];
        std::int16_t x;
        std::int16_t y;
        std::uint8_t padding3[7];
        std::uint8_t device;
    };
    static_assert(sizeof(Request) == 32);
    constexpr std::uint8_t fakeInputOpcode = 2;
    static xcb_extension_t xtest{"XTEST", 0};
    Request body{};
    body.type = input.type;
    body.detail = input.detail;
    body.root = input.root;
    body.x = static_cast<std::int16_t>(input.x);
    body.y = static_cast<std::int16_t>(input.y);
    body.device = input.device;
    const auto sent =
        sendRawRequest(connection, xtest, fakeInputOpcode, std::as_bytes(std::span(&body, 1)));
    xcb_discard_reply(connection, sent.sequence);
}

} // namespace kestrove::test
