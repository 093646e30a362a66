#include "Platform/Linux/JournalLog.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace kestrove {

namespace {

// The numbers of syslog(3).
int priority(LogLevel level) {
    switch (level) {
    case LogLevel::debug:
        return 7;
    case LogLevel::info:
        return 6;
    case LogLevel::standard:
        return 5;
    case LogLevel::error:
        break;
    }
    return 3;
}

void append(std::string& entry, std::string_view field, std::string_view value) {
    entry += field;
    if (value.find('\n') == std::string_view::npos) {
        entry += '=';
    } else {
        // The protocol's form for values of several lines: the length, little-endian, goes first.
        entry += '\n';
        for (unsigned shift = 0; shift < 64; shift += 8)
            entry += static_cast<char>(static_cast<std::uint64_t>(value.size()) >> shift & 0xff);
    }
    entry += value;
    entry += '\n';
}

} // namespace

JournalLog::JournalLog(std::string identifier, Echo echo, std::string socketPath)
    : m_identifier(std::move(identifier))
    , m_echo(echo)
    , m_socketPath(std::move(socketPath))
    , m_socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {}

JournalLog::~JournalLog() {
    if (m_socket >= 0)
        ::close(m_socket);
}

bool JournalLog::isStandardErrorConnected() {
    const char* const stream = std::getenv("JOURNAL_STREAM");
    struct stat status{};
    return stream && ::fstat(STDERR_FILENO, &status) == 0 &&
           fmt::format("{}:{}", status.st_dev, status.st_ino) == stream;
}

void JournalLog::write(std::string_view subsystem, std::string_view category, LogLevel level,
                       std::string_view line) {
    std::string entry;
    append(entry, "MESSAGE", line);
    append(entry, "PRIORITY", fmt::format("{}", priority(level)));
    append(entry, "SYSLOG_IDENTIFIER", m_identifier);
    append(entry, "SUBSYSTEM", subsystem);
    if (!category.empty())
        append(entry, "CATEGORY", category);
    const bool isTaken = send(entry);
    if (!isTaken || m_echo == Echo::toStandardError)
        m_standardError.write(subsystem, category, level, line);
}

bool JournalLog::send(const std::string& entry) const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (m_socket < 0 || m_socketPath.size() >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, m_socketPath.data(), m_socketPath.size());
    const auto sent = ::sendto(m_socket, entry.data(), entry.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
                               reinterpret_cast<const sockaddr*>(&address), sizeof address);
    return sent == static_cast<ssize_t>(entry.size());
}

std::unique_ptr<SystemLog> makeSystemLog(std::string identifier, std::string socketPath) {
    const auto echo = JournalLog::isStandardErrorConnected() ? JournalLog::Echo::no
                                                             : JournalLog::Echo::toStandardError;
    return std::make_unique<JournalLog>(std::move(identifier), echo, std::move(socketPath));
}

} // namespace kestrove
