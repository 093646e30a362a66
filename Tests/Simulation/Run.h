#pragma once

#include "Tests/Simulation/Checkers/Checkers.h"
#include "Tests/Simulation/Step.h"

#include <optional>
#include <string>

namespace kestrove::simulation {

struct RunResult {
    std::optional<Failure> failure;
    /// How many steps were taken.
    std::size_t stepCount = 0;
};

/// One world from its beginning to its end. When the process is ended by a misuse of the desktop
/// meanwhile, `name` and the steps so far are printed first.
[[nodiscard]] RunResult run(const Steps& steps, const std::string& name = "");

/// The fewest steps found that still break the same rule.
[[nodiscard]] Steps shrink(Steps steps, const std::string& rule);

/// The steps as lines, and what they broke.
[[nodiscard]] std::string trace(const Steps& steps, const Failure& failure);

} // namespace kestrove::simulation
