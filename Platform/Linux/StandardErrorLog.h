#pragma once

#include "Desktop/SystemLog.h"

namespace kestrove {

/// Log lines on standard error: the category and what is not an everyday level in front of the
/// line. Thread: any; a line is written whole.
class StandardErrorLog final : public SystemLog {
public:
    void write(std::string_view subsystem, std::string_view category, LogLevel level,
               std::string_view line) override;
};

} // namespace kestrove
