#include "Tests/Simulation/Report.h"

#include <fmt/format.h>

namespace kestrove::simulation {

Report& Report::ofThisProcess() {
    static Report report;
    return report;
}

std::string Report::lines() const {
    std::string lines;
    for (const auto& [name, count] : m_counts)
        lines += fmt::format("{} {}\n", count, name);
    return lines;
}

} // namespace kestrove::simulation
