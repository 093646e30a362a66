#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace kestrove::simulation {

/// What has happened in all runs of this process, counted. Only counts: nothing depends on it.
class Report {
public:
    static Report& ofThisProcess();

    /// So many more of what `name` says; none leaves a line that says 0.
    void count(const std::string& name, std::uint64_t more = 1) { m_counts[name] += more; }
    /// A line each, its count first.
    [[nodiscard]] std::string lines() const;

private:
    std::map<std::string, std::uint64_t> m_counts;
};

} // namespace kestrove::simulation
