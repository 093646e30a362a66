// Whatever happens on the desktop, and whenever: the program keeps its promises.

#include "Tests/Simulation/Run.h"

#include <cstdlib>
#include <fmt/format.h>
#include <gtest/gtest.h>

namespace kestrove::simulation {

namespace {

std::uint64_t number(const char* variable, std::uint64_t otherwise) {
    const char* const text = std::getenv(variable);
    return text ? std::strtoull(text, nullptr, 0) : otherwise;
}

void expectPromisesKept(std::uint64_t seed) {
    const auto steps = makeSteps(seed);
    const auto result = run(steps, fmt::format("seed {}", seed));
    if (!result.failure)
        return;
    auto fewer = steps;
    fewer.resize(std::min(fewer.size(), result.stepCount));
    if (number("KESTROVE_SHRINK", 1) != 0)
        fewer = shrink(fewer, result.failure->rule);
    const auto shown = run(fewer).failure.value_or(*result.failure);
    ADD_FAILURE() << fmt::format("seed {} ({} of {} steps are enough):\n{}", seed, fewer.size(),
                                 steps.size(), trace(fewer, shown));
}

} // namespace

// KESTROVE_SEED and KESTROVE_SEEDS: the first seed and how many. KESTROVE_SHRINK: 0 leaves the
// steps of a seed that fails as they are.
TEST(Simulation, KeepsItsPromises) {
    const auto first = number("KESTROVE_SEED", 1);
    const auto count = number("KESTROVE_SEEDS", 1000);
    for (auto seed = first; seed < first + count && !HasFailure(); ++seed)
        expectPromisesKept(seed);
}

TEST(Simulation, ReplaysARunExactly) {
    EXPECT_EQ(makeSteps(7), makeSteps(7));
    EXPECT_NE(makeSteps(7), makeSteps(8));
}

} // namespace kestrove::simulation
