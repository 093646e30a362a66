// Whatever is made in a session goes with it: nothing grows with use, here or in the server.

#include "Tests/X11/Sources/SourcesFixture.h"

#include <cstdlib>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <iterator>
#include <xcb/res.h>

namespace kestrove::test {
namespace {

int number(const char* variable, int otherwise) {
    const char* const text = std::getenv(variable);
    return text ? std::atoi(text) : otherwise;
}

/// In MiB.
double residentMemory(pid_t process) {
    std::ifstream file(fmt::format("/proc/{}/statm", process));
    double pages = 0;
    file >> pages >> pages;
    return pages * 4 / 1024;
}

long countIn(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder),
                         std::filesystem::directory_iterator());
}

struct Usage {
    double ownMemory;
    double serverMemory;
    long descriptors;
    long threads;
    /// Windows, pixmaps, pictures and all else that the server keeps for the application.
    long serverResources;

    [[nodiscard]] std::string text() const {
        return fmt::format("{:.1f} MiB here, {:.1f} MiB in the server, {} descriptors, {} threads, "
                           "{} resources of the server",
                           ownMemory, serverMemory, descriptors, threads, serverResources);
    }
};

class Leaks : public SourcesFixture {
protected:
    [[nodiscard]] Usage usage() {
        const auto resources = settledResources();
        return {residentMemory(getpid()), residentMemory(server().process().processIdentifier()),
                countIn("/proc/self/fd"), countIn("/proc/self/task"), resources};
    }

    /// The pointer goes to the other display, and the session follows.
    void switchTo(int x, std::string_view name) {
        server().movePointer(x, 20);
        ASSERT_TRUE(isActive(display(name)));
        ASSERT_TRUE(reaches(CaptureSessionState::running()));
    }
    void switchThereAndBack() {
        switchTo(1300, "RIGHT");
        switchTo(30, "LEFT");
    }
    void stopAndStart() {
        controller().stop();
        ASSERT_TRUE(reaches(CaptureSessionState::stopped()));
        start();
    }

private:
    /// Once the first frame of what is shared is drawn, for which more is made.
    [[nodiscard]] long settledResources() {
        long last = -1;
        int inARow = 0;
        constexpr int enough = 50;
        EXPECT_TRUE(loop.spinUntil([&] {
            const long now = resources();
            inARow = now == last ? inARow + 1 : 0;
            last = now;
            return inARow >= enough;
        }));
        return last;
    }
    [[nodiscard]] long resources() {
        // Asked by the test's own connection: what it holds itself stays the same.
        auto* const connection = x11Desktop->connection().get();
        const auto client = xcb_get_setup(connection)->resource_id_base;
        auto* const asking = desktop().connection();
        auto* const reply = xcb_res_query_client_resources_reply(
            asking, xcb_res_query_client_resources(asking, client), nullptr);
        if (!reply)
            return -1;
        long count = 0;
        const auto* const types = xcb_res_query_client_resources_types(reply);
        for (int index = 0; index < xcb_res_query_client_resources_types_length(reply); ++index)
            count += types[index].count;
        std::free(reply);
        return count;
    }
};

// KESTROVE_SWITCHES and KESTROVE_STARTS: how many, for a long run by hand.
TEST_F(Leaks, NothingGrowsWithSwitchesAndStarts) {
    const int switches = number("KESTROVE_SWITCHES", 200);
    const int starts = number("KESTROVE_STARTS", 20);
    start();
    for (int count = 0; count < 10 && !HasFailure(); ++count) {
        switchThereAndBack();
        stopAndStart();
    }
    const auto before = usage();
    ASSERT_GT(before.serverResources, 0);
    for (int count = 0; count < switches / 2 && !HasFailure(); ++count)
        switchThereAndBack();
    for (int count = 0; count < starts && !HasFailure(); ++count)
        stopAndStart();
    const auto after = usage();
    const auto texts = fmt::format("before: {}\nafter:  {}\n", before.text(), after.text());
    std::fputs(texts.c_str(), stdout);
    EXPECT_EQ(after.descriptors, before.descriptors) << texts;
    EXPECT_EQ(after.threads, before.threads) << texts;
    EXPECT_EQ(after.serverResources, before.serverResources) << texts;
    // What one source has in pixels alone is 4 MiB: one leak a switch would be hundreds.
    constexpr double slack = 16;
    // Sanitizers keep what was freed, and look for what is lost by themselves.
    constexpr double ownSlack = KESTROVE_SANITIZED == 1 ? 512 : slack;
    EXPECT_LT(after.ownMemory, before.ownMemory + ownSlack) << texts;
    EXPECT_LT(after.serverMemory, before.serverMemory + slack) << texts;
}

} // namespace
} // namespace kestrove::test
