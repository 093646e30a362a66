#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kestrove::test {

/// A program that a test starts: in a process group of its own, standard output and error in a log
/// file. The destructor ends it; if the test itself crashes or is killed, the kernel does. Use from
/// the main thread only: the kernel counts the thread that started a program as its parent.
class ChildProcess {
public:
    struct Options {
        std::vector<std::string> command;     ///< the program, looked up in PATH, and its arguments
        std::vector<std::string> environment; ///< KEY=VALUE, on top of the test's own
        std::filesystem::path log;            ///< appended to
        std::vector<int> keptDescriptors;     ///< every other one above 2 is closed in the child
    };

    explicit ChildProcess(const Options& options);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] const std::string& name() const { return m_name; }
    [[nodiscard]] pid_t processIdentifier() const { return m_process; }
    [[nodiscard]] bool isRunning();
    /// 128 + signal number after a death by signal, as shells say; none while it runs.
    [[nodiscard]] std::optional<int> exitCode();

    /// False when it still runs after that time.
    [[nodiscard]] bool waitForExit(std::chrono::milliseconds limit);
    void signal(int number);
    /// SIGTERM to the whole group; SIGKILL when that is not heard within two seconds.
    void stop();

    /// The last lines of the log, for messages.
    [[nodiscard]] std::string logTail() const;

private:
    std::string m_name;
    std::filesystem::path m_log;
    pid_t m_process = -1;
    int m_descriptor = -1; ///< a pidfd: it turns readable at the exit
    std::optional<int> m_exitCode;
    bool m_isStopped = false;
};

} // namespace kestrove::test
