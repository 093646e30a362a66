#pragma once

#include <chrono>
#include <functional>
#include <string_view>

namespace kestrove::test {

/// How long a condition may take before the test gives up. Generous: sanitizer builds on two busy
/// cores are slow, and a condition that holds is not waited for any longer.
inline constexpr std::chrono::seconds patience{20};

/// Asks `condition` until it holds or the time is over; true when it held. For what other processes
/// do and nothing announces; never for "nothing happens".
[[nodiscard]] bool waitUntil(const std::function<bool()>& condition,
                             std::chrono::milliseconds limit = patience);

/// Ends the test program with a line: a test that cannot have its desktop must not look green.
[[noreturn]] void giveUp(std::string_view line);

} // namespace kestrove::test
