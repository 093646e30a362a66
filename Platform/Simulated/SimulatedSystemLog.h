#pragma once

#include "Desktop/SystemLog.h"

#include <mutex>
#include <string>
#include <vector>

namespace kestrove {

/// A system log in memory.
class SimulatedSystemLog final : public SystemLog {
public:
    struct Line {
        std::string subsystem;
        std::string category;
        LogLevel level = LogLevel::standard;
        std::string text;

        bool operator==(const Line&) const = default;
    };

    void write(std::string_view subsystem, std::string_view category, LogLevel level,
               std::string_view line) override;

    /// Everything written so far, in order.
    [[nodiscard]] std::vector<Line> lines() const;
    /// The texts alone.
    [[nodiscard]] std::vector<std::string> texts() const;
    void clear();

private:
    mutable std::mutex m_mutex;
    std::vector<Line> m_lines;
};

} // namespace kestrove
