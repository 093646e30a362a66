// Whatever happens on the desktop, and whenever: the program keeps its promises.

#include "Tests/Simulation/Report.h"
#include "Tests/Simulation/Run.h"

#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

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
// steps of a seed that fails as they are. KESTROVE_REPORT: a file for what has happened.
TEST(Simulation, KeepsItsPromises) {
    const auto first = number("KESTROVE_SEED", 1);
    // The sanitizers make a seed five times as slow, and see what they look for in any of them.
    const auto count = number("KESTROVE_SEEDS", KESTROVE_SANITIZED == 1 ? 200 : 2000);
    for (auto seed = first; seed < first + count && !HasFailure(); ++seed)
        expectPromisesKept(seed);
    if (const char* const file = std::getenv("KESTROVE_REPORT"))
        std::ofstream(file) << Report::ofThisProcess().lines();
}

// What once broke a promise. A trace that a failure prints is such a file.
TEST(Simulation, StillKeepsThosePromisesThatItBroke) {
    for (const auto& file : std::filesystem::directory_iterator(KESTROVE_REGRESSIONS)) {
        std::ifstream text(file.path());
        const auto steps = readSteps(text);
        ASSERT_TRUE(steps) << file.path() << " is no trace";
        const auto failure = run(*steps, file.path().stem()).failure;
        EXPECT_FALSE(failure) << trace(*steps, failure.value_or(Failure{}));
    }
}

TEST(Simulation, ReplaysARunExactly) {
    EXPECT_EQ(makeSteps(7), makeSteps(7));
    EXPECT_NE(makeSteps(7), makeSteps(8));
    std::string lines;
    for (const auto& step : makeSteps(7))
        lines += fmt::format("  12 {}\n", describe(step));
    std::istringstream text(lines);
    EXPECT_EQ(readSteps(text), makeSteps(7));
}

} // namespace kestrove::simulation
