#include "Platform/Linux/TerminationSignals.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace kestrove {

namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT, SIGHUP};

// A signal handler can reach nothing else.
std::atomic<int> writeEnd = -1;

void handle(int /*signal*/) {
    const int before = errno;
    [[maybe_unused]] const auto written = ::write(writeEnd, "", 1);
    errno = before;
}

} // namespace

TerminationSignals::TerminationSignals(DescriptorWatching& watching,
                                       std::function<void()> terminate)
    : m_terminate(std::move(terminate)) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    m_readEnd = ends[0];
    writeEnd = ends[1];
    m_readable = watching.watchReadable(m_readEnd, [this] {
        std::array<char, 16> ignored{};
        if (::read(m_readEnd, ignored.data(), ignored.size()) > 0)
            m_terminate();
    });
    struct sigaction action{};
    action.sa_handler = handle;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (const int signal : handledSignals)
        ::sigaction(signal, &action, nullptr);
}

TerminationSignals::~TerminationSignals() {
    if (m_readEnd < 0)
        return;
    for (const int signal : handledSignals)
        std::signal(signal, SIG_DFL);
    m_readable.cancel();
    ::close(m_readEnd);
    ::close(writeEnd.exchange(-1));
}

} // namespace kestrove
