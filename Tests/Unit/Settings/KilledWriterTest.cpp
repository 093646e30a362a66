#include "Core/Settings/AppSettings.h"
#include "Platform/Linux/FileUserDefaults.h"
#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <cstdint>
#include <random>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrove::test {
namespace {

/// A process that stores settings as fast as it can, and tells by a byte whenever a round of them
/// is stored. All values of a round say which one it is.
class Writer {
public:
    Writer(const std::filesystem::path& file, std::int64_t firstRound) {
        EXPECT_EQ(::pipe(m_pipe.data()), 0);
        m_process = ::fork();
        if (m_process == 0)
            write(file, firstRound);
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() {
        ::kill(m_process, SIGKILL);
        int status = 0;
        EXPECT_EQ(::waitpid(m_process, &status, 0), m_process);
        EXPECT_TRUE(WIFSIGNALED(status)) << "it ended by itself";
        for (const int descriptor : m_pipe)
            ::close(descriptor);
    }

    void waitForARound() const {
        char byte = 0;
        EXPECT_EQ(::read(m_pipe[0], &byte, 1), 1);
    }

private:
    [[noreturn]] void write(const std::filesystem::path& file, std::int64_t round) const {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        FileUserDefaults defaults(file);
        AppSettings settings(defaults);
        for (;; ++round) {
            settings.targetFPS.set(round);
            settings.manualSources.set(
                std::vector(1 + static_cast<std::size_t>(round % 40),
                            CaptureSource::display(static_cast<DisplayID>(round))));
            if (::write(m_pipe[1], "r", 1) != 1)
                ::_exit(1);
        }
    }

    std::array<int, 2> m_pipe{};
    pid_t m_process = -1;
};

TEST(KilledWriter, LeavesAFileThatLoads) {
    const auto seed = std::random_device()();
    std::mt19937 random(seed);
    const TemporaryFolder folder;
    const auto file = folder.path() / "kestrove.conf";
    setContent(file, "# mine\nkestrove.followMode=manual\nkestrove.autoStart=true\n");
    std::int64_t stored = 1;
    std::int64_t storedSources = 1;
    for (int killing = 0; killing < 200; ++killing) {
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", killing " << killing);
        const auto first = stored + 1;
        const auto rounds = static_cast<std::int64_t>(random() % 3);
        {
            const Writer writer(file, first);
            for (std::int64_t round = 0; round < rounds; ++round)
                writer.waitForARound();
            // Somewhere in the next round.
            for (auto left = random() % 300; left > 0; --left)
                ::sched_yield();
        }
        ASSERT_TRUE(contentOf(file).starts_with(
            "# mine\nkestrove.followMode=manual\nkestrove.autoStart=true\n"));
        ASSERT_TRUE(contentOf(file).ends_with("\n")) << contentOf(file);
        FileUserDefaults defaults(file);
        const AppSettings settings(defaults);
        ASSERT_EQ(settings.followMode.get(), FollowMode::manual);
        ASSERT_TRUE(settings.autoStart.get());
        if (stored == 1 && rounds == 0 && !defaults.integer("kestrove.targetFPS"))
            continue; // killed before it had stored anything
        // What it told of is stored, and nothing older came back.
        stored = settings.targetFPS.get();
        ASSERT_GE(stored, first + rounds - 1);
        // So is the other value of a round; it is whole, and of no round that was not begun.
        const auto sources = settings.manualSources.get();
        if (rounds > 0)
            ASSERT_FALSE(sources.empty());
        if (sources.empty())
            continue;
        const std::int64_t sourcesRound = sources.front().identifier();
        ASSERT_EQ(sources.size(), 1U + static_cast<std::size_t>(sourcesRound % 40));
        ASSERT_LE(sourcesRound, stored);
        ASSERT_GE(sourcesRound, rounds > 0 ? first + rounds - 1 : storedSources);
        storedSources = sourcesRound;
    }
}

} // namespace
} // namespace kestrove::test
