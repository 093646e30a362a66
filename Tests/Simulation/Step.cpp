#include "Tests/Simulation/Step.h"

#include "Tests/Simulation/Theme.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fmt/format.h>
#include <istream>
#include <numeric>
#include <random>
#include <string_view>

namespace kestrove::simulation {

namespace {

struct Kind {
    std::string_view name;
    /// How often it comes, relative to the others; 0 where it comes in themes only.
    unsigned weight;
};

constexpr std::array<Kind, static_cast<std::size_t>(StepKind::count)> kinds{{
    {"plug a display", 3},
    {"unplug a display", 3},
    {"change a display", 2},
    {"launch an application", 2},
    {"quit an application", 3},
    {"open a window", 4},
    {"reopen a window under its old number", 2},
    {"close a window", 4},
    {"show or hide a window", 3},
    {"raise a window", 3},
    {"move a window", 3},
    {"paint a window", 4},
    {"retitle a window", 1},
    {"move the pointer", 8},
    {"focus an application", 5},
    {"focus nothing", 1},
    {"focus the program", 1},
    {"resign the session", 2},
    {"become the session", 3},
    {"screens sleep", 2},
    {"screens wake", 3},
    {"withdraw the permission", 1},
    {"give the permission", 3},
    {"choose what a request answers", 1},
    {"plan an operation", 9},
    {"release the operations", 6},
    {"end all streams", 2},
    {"the display layer fails", 1},
    {"the window list becomes unreadable", 1},
    {"the window list becomes readable", 2},
    {"fill the disk", 1},
    {"free the disk", 2},
    {"press start", 10},
    {"press stop", 6},
    {"set the follow mode", 6},
    {"toggle a source", 9},
    {"set the manual sources", 3},
    {"set the frame rate", 1},
    {"toggle hidden", 2},
    {"toggle always on top", 1},
    {"press refresh", 3},
    {"resize the output", 1},
    {"minimise the output", 1},
    {"open the menu", 2},
    {"run a command of the menu", 3},
    {"click a row of the menu", 4},
    {"open the picker", 1},
    {"pick in the picker", 4},
    {"edit a shortcut", 4},
    {"restore the shortcuts", 1},
    {"press a hot key", 4},
    {"another program takes a hot key or gives it back", 2},
    {"the system refuses the next hot keys", 2},
    {"restart the program", 1},
    {"corrupt the settings and restart", 1},
    {"other threads become slow or fast", 0},
}};

constexpr std::array<std::string_view, static_cast<std::size_t>(Pause::count)> pauses{
    "", "a few operations", "until idle", "milliseconds", "a moment", "seconds"};

/// The standard's distributions differ between libraries; the engine does not.
std::uint32_t below(std::mt19937_64& random, std::uint32_t bound) {
    return static_cast<std::uint32_t>(random() % bound);
}

using Weights = std::array<unsigned, kinds.size()>;

/// Every seed has its own habits: what never happens, and what happens all the time. Long runs of
/// the same few things find what an even mixture hardly ever does.
Weights makeWeights(std::mt19937_64& random) {
    constexpr std::array<unsigned, 6> factors{0, 1, 1, 1, 2, 8};
    Weights weights{};
    for (std::size_t index = 0; index < kinds.size() && kinds.at(index).weight > 0; ++index)
        weights.at(index) = kinds.at(index).weight * factors.at(below(random, factors.size()));
    // Without a session there is little to see.
    auto& start = weights.at(static_cast<std::size_t>(StepKind::start));
    start = std::max(start, 10U);
    return weights;
}

StepKind pickKind(std::mt19937_64& random, const Weights& weights) {
    auto ticket = below(random, std::accumulate(weights.begin(), weights.end(), 0U));
    std::size_t index = 0;
    while (ticket >= weights.at(index))
        ticket -= weights.at(index++);
    return static_cast<StepKind>(index);
}

Pause pickPause(std::mt19937_64& random) {
    constexpr std::array<Pause, 10> tickets{
        Pause::none,      Pause::none,         Pause::fewOperations, Pause::fewOperations,
        Pause::untilIdle, Pause::milliseconds, Pause::milliseconds,  Pause::moment,
        Pause::moment,    Pause::seconds};
    return tickets.at(below(random, tickets.size()));
}

/// Short ones: what is about to happen is met on its way.
Pause pickShortPause(std::mt19937_64& random) {
    constexpr std::array<Pause, 8> tickets{
        Pause::none,      Pause::none,         Pause::fewOperations, Pause::fewOperations,
        Pause::untilIdle, Pause::milliseconds, Pause::milliseconds,  Pause::moment};
    return tickets.at(below(random, tickets.size()));
}

template <class List>
auto pickFrom(std::mt19937_64& random, const List& list) {
    return list.at(below(random, static_cast<std::uint32_t>(list.size())));
}

Steps makeStepsOf(const Theme& theme, std::mt19937_64& random) {
    Steps steps(30 + below(random, 50));
    const auto length = static_cast<std::uint32_t>(theme.course.size());
    std::uint32_t place = below(random, length);
    for (auto& step : steps) {
        place = below(random, 5) == 0 ? below(random, length) : (place + 1) % length;
        step.kind = theme.course.at(place);
        step.pause = pickShortPause(random);
        step.a = below(random, 1U << 16);
        step.b = below(random, 1U << 16);
        if (step.kind == StepKind::planOperation)
            step.a = pickFrom(random, theme.operations);
    }
    return steps;
}

} // namespace

Steps makeSteps(std::uint64_t seed) {
    std::mt19937_64 random(seed);
    if (const auto* const theme = themeOf(seed))
        return makeStepsOf(*theme, random);
    const auto weights = makeWeights(random);
    Steps steps(20 + below(random, 60));
    for (auto& step : steps) {
        step.kind = pickKind(random, weights);
        step.pause = pickPause(random);
        step.a = below(random, 1U << 16);
        step.b = below(random, 1U << 16);
    }
    return steps;
}

std::string nameOf(StepKind kind) {
    return std::string(kinds.at(static_cast<std::size_t>(kind)).name);
}

std::string describe(const Step& step) {
    const auto pause = pauses.at(static_cast<std::size_t>(step.pause));
    return fmt::format("{} ({}, {}){}{}", kinds.at(static_cast<std::size_t>(step.kind)).name,
                       step.a, step.b, pause.empty() ? "" : ", then ", pause);
}

std::optional<Steps> readSteps(std::istream& trace) {
    Steps steps;
    for (std::string line; std::getline(trace, line);) {
        const auto begin = line.find_first_not_of(" 0123456789");
        if (begin == std::string::npos || line[begin] == '#')
            continue;
        Step step;
        const auto open = line.find(" (", begin);
        const auto name = line.substr(begin, open - begin);
        const auto kind = std::ranges::find(kinds, name, &Kind::name);
        unsigned a = 0;
        unsigned b = 0;
        if (kind == kinds.end() || open == std::string::npos ||
            std::sscanf(line.c_str() + open, " (%u, %u)", &a, &b) != 2)
            return std::nullopt;
        step.kind = static_cast<StepKind>(kind - kinds.begin());
        step.a = a;
        step.b = b;
        constexpr std::string_view then = ", then ";
        if (const auto at = line.find(then, open); at != std::string::npos) {
            const auto pause = std::ranges::find(pauses, line.substr(at + then.size()));
            if (pause == pauses.end())
                return std::nullopt;
            step.pause = static_cast<Pause>(pause - pauses.begin());
        }
        steps.push_back(step);
    }
    return steps;
}

} // namespace kestrove::simulation
