#include "Platform/Linux/StandardErrorLog.h"

#include <fmt/format.h>
#include <unistd.h>

namespace kestrove {

namespace {

std::string_view name(LogLevel level) {
    switch (level) {
    case LogLevel::debug:
        return "debug: ";
    case LogLevel::error:
        return "error: ";
    case LogLevel::info:
    case LogLevel::standard:
        break;
    }
    return "";
}

} // namespace

void StandardErrorLog::write(std::string_view /*subsystem*/, std::string_view category,
                             LogLevel level, std::string_view line) {
    const auto text =
        fmt::format("{}{}{}{}\n", category, category.empty() ? "" : ": ", name(level), line);
    // One call, so that lines of several threads do not mix. Nobody is left to be told of an error.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, text.data(), text.size());
}

} // namespace kestrove
