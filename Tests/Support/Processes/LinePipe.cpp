#include "Tests/Support/Processes/LinePipe.h"

#include "Tests/Support/Processes/Waiting.h"

#include <chrono>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace kestrove::test {

LinePipe::LinePipe() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        giveUp("no pipe");
    }
    m_readEnd = ends[0];
    m_writeEnd = ends[1];
}

LinePipe::~LinePipe() {
    ::close(m_readEnd);
    if (m_writeEnd >= 0) {
        ::close(m_writeEnd);
    }
}

std::string LinePipe::readLine() {
    // Only the program may hold the other end, or its death would not be seen.
    ::close(m_writeEnd);
    m_writeEnd = -1;
    std::string line;
    pollfd waited{.fd = m_readEnd, .events = POLLIN, .revents = 0};
    constexpr auto limit = std::chrono::duration_cast<std::chrono::milliseconds>(patience);
    while (::poll(&waited, 1, static_cast<int>(limit.count())) > 0) {
        char letter = 0;
        if (::read(m_readEnd, &letter, 1) != 1) {
            return {};
        }
        if (letter == '\n') {
            return line;
        }
        line += letter;
    }
    return {};
}

} // namespace kestrove::test
