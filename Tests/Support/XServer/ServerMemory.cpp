#include "Tests/Support/XServer/ServerMemory.h"

#include "Tests/Support/XServer/Reply.h"

#include <algorithm>
#include <fmt/format.h>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>
#include <xcb/composite.h>

namespace kestrove::test {

void ServerMemory::limit(rlim_t spare) {
    setLimit(addressSpace() + spare);
}

void ServerMemory::free() {
    setLimit(RLIM_INFINITY);
}

void ServerMemory::keepPicture(xcb_window_t window) {
    xcb_composite_redirect_window(m_server.connection(), window, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
    sync(m_server.connection());
}

rlim_t ServerMemory::addressSpace() const {
    rlim_t pages = 0;
    std::ifstream(fmt::format("/proc/{}/statm", process())) >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

void ServerMemory::setLimit(rlim_t bytes) const {
    rlimit limit{};
    ASSERT_EQ(prlimit(process(), RLIMIT_AS, nullptr, &limit), 0);
    limit.rlim_cur = std::min(bytes, limit.rlim_max);
    ASSERT_EQ(prlimit(process(), RLIMIT_AS, &limit, nullptr), 0);
}

} // namespace kestrove::test
