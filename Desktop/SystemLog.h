#pragma once

#include <string_view>

namespace kestrove {

enum class LogLevel { debug, info, standard, error };

/// The system's log. Writing never fails to the caller and never blocks for long.
///
/// Thread: any.
class SystemLog {
public:
    SystemLog() = default;
    SystemLog(const SystemLog&) = delete;
    SystemLog& operator=(const SystemLog&) = delete;
    virtual ~SystemLog() = default;

    /// `subsystem` is the application's bundle identifier; `category` names an area and is empty
    /// for plain diagnostic lines. `line` has no line break.
    virtual void write(std::string_view subsystem, std::string_view category, LogLevel level,
                       std::string_view line) = 0;
};

} // namespace kestrove
