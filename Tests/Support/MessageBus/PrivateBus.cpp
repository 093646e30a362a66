#include "Tests/Support/MessageBus/PrivateBus.h"

#include "Tests/Support/Processes/Waiting.h"

#include <filesystem>

namespace kestrove::test {

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
    if (!waitUntil([this] { return std::filesystem::exists(m_folder.path() / "bus"); }))
        giveUp("dbus-daemon does not start: " + m_daemon->logTail());
}

} // namespace kestrove::test
