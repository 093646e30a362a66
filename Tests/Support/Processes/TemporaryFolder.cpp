#include "Tests/Support/Processes/TemporaryFolder.h"

#include "Tests/Support/Processes/Waiting.h"

#include <cstdlib>
#include <string>
#include <system_error>

namespace kestrove::test {

TemporaryFolder::TemporaryFolder() {
    std::string name = std::filesystem::temp_directory_path() / "kestrove-test-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        giveUp("cannot make a temporary folder");
    }
    m_path = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored; // a leftover file in /tmp is no reason to fail a test
    std::filesystem::remove_all(m_path, ignored);
}

} // namespace kestrove::test
