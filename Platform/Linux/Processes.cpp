#include "Platform/Linux/Processes.h"

#include <fmt/format.h>
#include <fstream>
#include <sstream>
#include <string>

namespace kestrove {

std::optional<std::uint64_t> processStartTime(ProcessID process) {
    std::ifstream file(fmt::format("/proc/{}/stat", process));
    std::string line;
    if (process <= 0 || !std::getline(file, line, '\0'))
        return std::nullopt;
    // The name, in parentheses, may itself hold spaces and parentheses.
    const auto nameEnd = line.rfind(')');
    if (nameEnd == std::string::npos)
        return std::nullopt;
    std::istringstream fields(line.substr(nameEnd + 1));
    std::string state;
    fields >> state;
    if (state == "Z" || state == "X")
        return std::nullopt;
    // The state is field 3, the start time field 22.
    constexpr int fieldsBetween = 18;
    std::string skipped;
    for (int i = 0; i < fieldsBetween; ++i)
        fields >> skipped;
    std::uint64_t startTime = 0;
    return fields >> startTime ? std::optional(startTime) : std::nullopt;
}

} // namespace kestrove
