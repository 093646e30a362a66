#pragma once

#include "Tests/Support/Processes/ChildProcess.h"
#include "Tests/Support/Processes/TemporaryFolder.h"

#include <memory>
#include <string>

namespace kestrove::test {

/// A D-Bus bus of the test's own, on which nobody is but whom the test brings. Stands for the
/// session's bus or for the system's: what makes it one is where the environment says that it is.
class PrivateBus {
public:
    /// Returns when it listens.
    PrivateBus();

    [[nodiscard]] const std::string& address() const { return m_address; }
    /// The bus dies; it may be started again under its address.
    void stop() { m_daemon.reset(); }
    void start();

private:
    TemporaryFolder m_folder;
    std::string m_address;
    std::unique_ptr<ChildProcess> m_daemon;
};

} // namespace kestrove::test
