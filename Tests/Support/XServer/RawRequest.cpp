#include "Tests/Support/XServer/RawRequest.h"

#include <array>
#include <vector>

#include <sys/uio.h>

namespace kestrove::test {

xcb_void_cookie_t sendRawRequest(xcb_connection_t* connection, xcb_extension_t& extension,
                                 std::uint8_t opcode, std::span<const std::byte> body) {
    std::vector<std::byte> whole(4); // libxcb fills in opcodes and length
    whole.insert(whole.end(), body.begin(), body.end());
    const xcb_protocol_request_t request{
        .count = 1, .ext = &extension, .opcode = opcode, .isvoid = 1};
    std::array<iovec, 3> vectors{}; // libxcb wants two free ones before the first
    vectors[2] = {.iov_base = whole.data(), .iov_len = whole.size()};
    return {xcb_send_request(connection, XCB_REQUEST_CHECKED, &vectors[2], &request)};
}

} // namespace kestrove::test
