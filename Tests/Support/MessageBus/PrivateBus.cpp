#include "Tests/Support/MessageBus/PrivateBus.h"

#include "Tests/Support/Processes/Waiting.h"

#include <filesystem>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace kestrove::test {

namespace {

/// Its socket is there before it can be connected to.
bool listens(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.string().copy(address.sun_path, sizeof address.sun_path - 1);
    const int attempt = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool connected =
        connect(attempt, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    close(attempt);
    return connected;
}

} // namespace

PrivateBus::PrivateBus()
    : m_address("unix:path=" + (m_folder.path() / "bus").string()) {
    start();
}

void PrivateBus::start() {
    std::filesystem::remove(m_folder.path() / "bus");
    m_daemon = std::make_unique<ChildProcess>(
        ChildProcess::Options{.command = {"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                          "--address=" + m_address},
                              .environment = {},
                              .log = m_folder.path() / "log",
                              .keptDescriptors = {}});
    if (!waitUntil([this] { return listens(m_folder.path() / "bus"); }))
        giveUp("dbus-daemon does not start: " + m_daemon->logTail());
}

} // namespace kestrove::test
