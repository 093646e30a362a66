#pragma once

#include "Desktop/SystemLog.h"
#include "Platform/Linux/StandardErrorLog.h"

#include <memory>
#include <string>

namespace kestrove {

/// Log lines in the system's journal, by its native protocol: the line as MESSAGE, and SUBSYSTEM
/// and CATEGORY as fields to filter by. What the journal does not take (it is full, or restarting)
/// goes to standard error.
///
/// Thread: any.
class JournalLog final : public SystemLog {
public:
    enum class Echo {
        no,
        /// Each line goes to standard error as well: to a terminal, or to the file of a session.
        toStandardError,
    };
    /// `identifier` names the program in the journal. `socketPath` is where the journal listens.
    explicit JournalLog(std::string identifier, Echo echo = Echo::no,
                        std::string socketPath = "/run/systemd/journal/socket");
    ~JournalLog() override;

    /// Whether standard error is a stream into the journal, which says so in the environment.
    [[nodiscard]] static bool isStandardErrorConnected();

    void write(std::string_view subsystem, std::string_view category, LogLevel level,
               std::string_view line) override;

private:
    [[nodiscard]] bool send(const std::string& entry) const;

    std::string m_identifier;
    Echo m_echo;
    std::string m_socketPath;
    int m_socket;
    StandardErrorLog m_standardError;
};

/// The journal, where there is one, and standard error, unless that leads into the journal itself.
[[nodiscard]] std::unique_ptr<SystemLog>
makeSystemLog(std::string identifier, std::string socketPath = "/run/systemd/journal/socket");

} // namespace kestrove
