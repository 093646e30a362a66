#include "Tests/Support/Processes/ChildProcess.h"

#include "Tests/Support/Processes/Waiting.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string_view>

#include <fcntl.h>
#include <linux/close_range.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" {
#include <sys/pidfd.h> // glibc 2.36 forgets to say that it is C
}

#include <fmt/core.h>

namespace kestrove::test {

namespace {

/// What would lead a program back to the desktop that the test happens to be started on.
constexpr std::array ambientVariables{
    "DISPLAY",         "WAYLAND_DISPLAY",          "WAYLAND_SOCKET",
    "XAUTHORITY",      "DBUS_SESSION_BUS_ADDRESS", "SESSION_MANAGER",
    "DESKTOP_SESSION", "XDG_CURRENT_DESKTOP"};

/// How long a program may take to end by itself; Xvfb and xfwm4 need a tenth of it.
constexpr std::chrono::seconds terminationTime{2};

std::string_view keyOf(std::string_view variable) {
    return variable.substr(0, variable.find('='));
}

std::vector<std::string> fullEnvironment(const std::vector<std::string>& added) {
    std::vector<std::string> all;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string_view key = keyOf(*variable);
        bool kept = true;
        for (const char* ambient : ambientVariables) {
            kept = kept && key != ambient;
        }
        for (const std::string& other : added) {
            kept = kept && key != keyOf(other);
        }
        if (kept) {
            all.emplace_back(*variable);
        }
    }
    all.insert(all.end(), added.begin(), added.end());
    return all;
}

std::vector<char*> pointers(std::vector<std::string>& strings) {
    std::vector<char*> result;
    for (std::string& string : strings) {
        result.push_back(string.data());
    }
    result.push_back(nullptr);
    return result;
}

/// Between fork and exec only calls that are safe in a signal handler are allowed.
[[noreturn]] void becomeProgram(char* const* command, char* const* environment, int log,
                                const std::vector<int>& kept, pid_t parent) {
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) {
        ::_exit(127); // the parent was gone before the kernel knew our wish
    }
    const int null = ::open("/dev/null", O_RDONLY);
    ::dup2(null, STDIN_FILENO);
    ::dup2(log, STDOUT_FILENO);
    ::dup2(log, STDERR_FILENO);
    ::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
    for (const int descriptor : kept) {
        ::fcntl(descriptor, F_SETFD, 0);
    }
    ::execvpe(command[0], command, environment);
    const char* reason = ::strerrordesc_np(errno);
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, reason, std::strlen(reason));
    ::_exit(127);
}

} // namespace

ChildProcess::ChildProcess(const Options& options)
    : m_name(options.command.at(0))
    , m_log(options.log) {
    std::vector<std::string> command = options.command;
    std::vector<std::string> environment = fullEnvironment(options.environment);
    const std::vector<char*> commandPointers = pointers(command);
    const std::vector<char*> environmentPointers = pointers(environment);
    const int log = ::open(m_log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (log < 0) {
        giveUp(fmt::format("cannot write {}", m_log.string()));
    }
    const pid_t parent = ::getpid();
    m_process = ::fork();
    if (m_process == 0) {
        becomeProgram(commandPointers.data(), environmentPointers.data(), log,
                      options.keptDescriptors, parent);
    }
    ::close(log);
    if (m_process < 0) {
        giveUp(fmt::format("cannot start {}", m_name));
    }
    // In both processes, so that the group exists whoever runs first.
    ::setpgid(m_process, m_process);
    m_descriptor = ::pidfd_open(m_process, 0);
    if (m_descriptor < 0) {
        giveUp(fmt::format("no process descriptor for {}", m_name));
    }
}

ChildProcess::~ChildProcess() {
    stop();
    ::close(m_descriptor);
}

bool ChildProcess::isRunning() {
    return !exitCode();
}

std::optional<int> ChildProcess::exitCode() {
    int status = 0;
    if (!m_exitCode && ::waitpid(m_process, &status, WNOHANG) == m_process) {
        m_exitCode = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }
    return m_exitCode;
}

bool ChildProcess::waitForExit(std::chrono::milliseconds limit) {
    if (isRunning()) {
        pollfd waited{.fd = m_descriptor, .events = POLLIN, .revents = 0};
        ::poll(&waited, 1, static_cast<int>(limit.count()));
    }
    return !isRunning();
}

void ChildProcess::signal(int number) {
    if (isRunning()) {
        ::kill(m_process, number);
    }
}

void ChildProcess::stop() {
    if (m_isStopped) {
        return; // the number may belong to another program by now
    }
    m_isStopped = true;
    if (isRunning()) {
        ::kill(-m_process, SIGTERM);
        ::kill(-m_process, SIGCONT); // a stopped program would never see the first one
        if (!waitForExit(terminationTime)) {
            ::kill(-m_process, SIGKILL);
            [[maybe_unused]] const bool ended = waitForExit(patience);
        }
    }
    ::kill(-m_process, SIGKILL); // what it has started and left behind in its group
}

std::string ChildProcess::logTail() const {
    constexpr std::size_t tail = 4000;
    std::ostringstream text;
    text << std::ifstream(m_log).rdbuf();
    const std::string all = text.str();
    return all.size() > tail ? "...\n" + all.substr(all.size() - tail) : all;
}

} // namespace kestrove::test
