#include "Tests/Simulation/Run.h"

#include "Tests/Simulation/Report.h"
#include "Tests/Simulation/World.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fmt/format.h>
#include <utility>

namespace kestrove::simulation {

namespace {

/// What runs now, for the handler below.
const Steps* runningSteps = nullptr;
std::string runningName;
std::size_t runningCount = 0;

/// The simulated desktop ends the process when it is misused. Not a handler that has to be safe in
/// a signal: the process ends by an abort of its own thread, between two operations.
void printRunningSteps(int /*signal*/) {
    if (!runningSteps)
        return;
    fmt::print(stderr, "the process ends in this run: {}\n", runningName);
    for (std::size_t index = 0; index < runningCount && index < runningSteps->size(); ++index)
        fmt::print(stderr, "  {:3} {}\n", index, describe((*runningSteps)[index]));
}

class RunningSteps {
public:
    RunningSteps(const Steps& steps, std::string name) {
        runningSteps = &steps;
        runningName = std::move(name);
        runningCount = 0;
        m_previous = std::signal(SIGABRT, printRunningSteps);
    }
    ~RunningSteps() {
        runningSteps = nullptr;
        std::signal(SIGABRT, m_previous);
    }
    RunningSteps(const RunningSteps&) = delete;
    RunningSteps& operator=(const RunningSteps&) = delete;

private:
    void (*m_previous)(int) = nullptr;
};

} // namespace

RunResult run(const Steps& steps, const std::string& name) {
    const RunningSteps running(steps, name);
    RunResult result;
    auto& report = Report::ofThisProcess();
    report.count("runs");
    World world;
    for (const auto& step : steps) {
        runningCount = ++result.stepCount;
        report.count("step: " + nameOf(step.kind));
        world.perform(step);
        if (world.failure())
            break;
    }
    if (!world.failure())
        world.calmDown();
    result.failure = world.failure();
    return result;
}

Steps shrink(Steps steps, const std::string& rule) {
    const auto stillFails = [&rule](const Steps& fewer) {
        const auto result = run(fewer);
        return result.failure && result.failure->rule == rule;
    };
    for (std::size_t size = std::max<std::size_t>(1, steps.size() / 2);;) {
        bool gotShorter = false;
        for (std::size_t first = 0; first < steps.size();) {
            auto fewer = steps;
            const auto begin = fewer.begin() + static_cast<std::ptrdiff_t>(first);
            const auto length = std::min(size, fewer.size() - first);
            fewer.erase(begin, begin + static_cast<std::ptrdiff_t>(length));
            if (stillFails(fewer)) {
                steps = std::move(fewer);
                gotShorter = true;
            } else {
                first += size;
            }
        }
        if (size == 1 && !gotShorter)
            return steps;
        size = std::max<std::size_t>(1, size / 2);
    }
}

std::string trace(const Steps& steps, const Failure& failure) {
    std::string lines;
    for (std::size_t index = 0; index < steps.size(); ++index)
        lines += fmt::format("  {:3} {}\n", index, describe(steps[index]));
    return lines + fmt::format("  broken: {}: {}\n", failure.rule, failure.detail);
}

} // namespace kestrove::simulation
