#pragma once

#include "Desktop/SystemLog.h"

#include <string>
#include <vector>

namespace kestrove {

/// Keeps every line that was written.
class RecordingLog final : public SystemLog {
public:
    struct Line {
        std::string subsystem;
        std::string category;
        LogLevel level;
        std::string text;

        bool operator==(const Line&) const = default;
    };

    void write(std::string_view subsystem, std::string_view category, LogLevel level,
               std::string_view line) override {
        lines.push_back({std::string(subsystem), std::string(category), level, std::string(line)});
    }

    std::vector<Line> lines;
};

} // namespace kestrove
