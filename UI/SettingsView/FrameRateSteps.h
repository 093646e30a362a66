#pragma once

#include <algorithm>
#include <cstdint>

/// The frame rates that the settings window offers. What is stored may be any other number: it is
/// shown as it is until the user steps, and then comes into the range.
namespace kestrove::FrameRateSteps {

inline constexpr std::int64_t lowest = 15;
inline constexpr std::int64_t highest = 60;
inline constexpr std::int64_t step = 5;

[[nodiscard]] constexpr bool canStepUp(std::int64_t rate) {
    return rate < highest;
}
[[nodiscard]] constexpr bool canStepDown(std::int64_t rate) {
    return rate > lowest;
}
/// `steps` is negative for downwards.
[[nodiscard]] constexpr std::int64_t stepped(std::int64_t rate, int steps) {
    // Into the range first: what is stored may be so large that a step would overflow.
    const auto near = std::clamp(rate, lowest - step, highest + step);
    return std::clamp(near + steps * step, lowest, highest);
}

} // namespace kestrove::FrameRateSteps
