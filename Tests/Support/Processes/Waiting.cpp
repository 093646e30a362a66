#include "Tests/Support/Processes/Waiting.h"

#include <cstdlib>
#include <poll.h>

#include <fmt/core.h>

namespace kestrove::test {

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) {
            return condition();
        }
        ::poll(nullptr, 0, 2);
    }
    return true;
}

void giveUp(std::string_view line) {
    fmt::print(stderr, "test support: {}\n", line);
    std::fflush(stderr);
    std::abort();
}

} // namespace kestrove::test
