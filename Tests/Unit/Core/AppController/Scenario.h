#pragma once

#include "Tests/Unit/Core/AppController/ControllerBench.h"

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace kestrove {

using Action = std::function<void(ControllerBench&)>;

/// Something that the controller is in the middle of while something else happens.
struct Scenario {
    std::string name;
    /// Up to the moment of interest, with nothing held.
    Action prepare;
    Action begin;
};

/// Starting, switching, recovering, resuming and waiting, each with its ways to go wrong.
[[nodiscard]] std::vector<Scenario> scenarios();

void PrintTo(const Scenario& scenario, std::ostream* out);

} // namespace kestrove
