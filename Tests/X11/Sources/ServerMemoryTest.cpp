// The X server runs out of memory for pictures while something is shared.

#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Sources/SourcesFixture.h"

#include <algorithm>
#include <fmt/format.h>
#include <fstream>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <xcb/composite.h>

namespace kestrove::test {
namespace {

/// A window far larger than the screen, whose picture takes 144 MB of the server's memory.
class ServerMemory : public SourcesFixture {
protected:
    static constexpr xcb_rectangle_t enormous{1400, 200, 6000, 6000};
    static constexpr Color red = 0xffd01010;

    /// From now on the server gets little more memory than it has.
    static void limitServer() {
        constexpr rlim_t spare = 24 << 20; // plenty for all but pictures of this size
        setLimit(addressSpace() + spare);
    }
    /// As a compositor does: a server that has no memory for this picture crashes by itself.
    static void keepPicture(const Program& program) {
        xcb_composite_redirect_window(desktop().connection(), program.window->id(),
                                      XCB_COMPOSITE_REDIRECT_AUTOMATIC);
        sync(desktop().connection());
    }
    static void freeServer() { setLimit(RLIM_INFINITY); }
    ~ServerMemory() override { freeServer(); }

private:
    static pid_t serverProcess() { return server().process().processIdentifier(); }
    static void setLimit(rlim_t bytes) {
        rlimit limit{};
        ASSERT_EQ(prlimit(serverProcess(), RLIMIT_AS, nullptr, &limit), 0);
        limit.rlim_cur = std::min(bytes, limit.rlim_max);
        ASSERT_EQ(prlimit(serverProcess(), RLIMIT_AS, &limit, nullptr), 0);
    }
    static rlim_t addressSpace() {
        rlim_t pages = 0;
        std::ifstream(fmt::format("/proc/{}/statm", serverProcess())) >> pages;
        return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
    }
};

TEST_F(ServerMemory, ThatIsShortIsSaidAndComesBackByItself) {
    const auto large = startProgram("large", enormous, red);
    keepPicture(large);
    start();
    ASSERT_TRUE(shows(leftColor));
    limitServer();
    ASSERT_NO_FATAL_FAILURE(tick(large.source()));
    EXPECT_TRUE(
        reaches(CaptureSessionState::recoveryRequired(CaptureRecoveryReason::streamStopped)));
    EXPECT_TRUE(controller().recoveryGuidance().has_value());
    EXPECT_FALSE(controller().activeSource().get().has_value());

    freeServer();
    // It was picked by hand, and is there.
    EXPECT_TRUE(shows(red));
    EXPECT_TRUE(isActive(large.source()));
    EXPECT_TRUE(reaches(CaptureSessionState::running()));
}

} // namespace
} // namespace kestrove::test
