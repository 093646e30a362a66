#include "Platform/Simulated/SimulatedSystemLog.h"

#include "Platform/Simulated/Misuse.h"

namespace kestrove {

void SimulatedSystemLog::write(std::string_view subsystem, std::string_view category,
                               LogLevel level, std::string_view line) {
    if (line.find('\n') != std::string_view::npos)
        abortOnMisuse("a log line with a line break");
    const std::scoped_lock lock(m_mutex);
    m_lines.push_back({std::string(subsystem), std::string(category), level, std::string(line)});
}

std::vector<SimulatedSystemLog::Line> SimulatedSystemLog::lines() const {
    const std::scoped_lock lock(m_mutex);
    return m_lines;
}

std::vector<std::string> SimulatedSystemLog::texts() const {
    std::vector<std::string> texts;
    for (const auto& line : lines())
        texts.push_back(line.text);
    return texts;
}

void SimulatedSystemLog::clear() {
    const std::scoped_lock lock(m_mutex);
    m_lines.clear();
}

} // namespace kestrove
