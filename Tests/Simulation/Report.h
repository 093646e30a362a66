#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace kestrove::simulation {

/// What has happened in all runs of this process, counted. Only counts: nothing depends on it.
class Report {
public:
    static Report& ofThisProcess();

    /// One more of what `name` says.
    void count(const std::string& name) { ++m_counts[name]; }
    /// A line each, its count first.
    [[nodiscard]] std::string lines() const;

private:
    std::map<std::string, std::uint64_t> m_counts;
};

} // namespace kestrove::simulation
