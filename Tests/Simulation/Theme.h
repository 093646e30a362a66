#pragma once

#include "Tests/Simulation/Step.h"

#include <cstdint>
#include <vector>

namespace kestrove::simulation {

/// What some seeds are about: a few kinds of steps, over and over, close together, while one or two
/// operations of the capture service are in trouble. A mixture of everything hardly ever has what
/// it takes for something to come back when another has taken its place.
struct Theme {
    /// Mostly one after the other, in a circle, with a leap now and then.
    std::vector<StepKind> course;
    /// Which operations are planned, as a plan's first number says it.
    std::vector<std::uint32_t> operations;
};

/// Null for a seed of everything.
[[nodiscard]] const Theme* themeOf(std::uint64_t seed);

} // namespace kestrove::simulation
