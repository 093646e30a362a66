#include "Tests/Support/Processes/ChildProcess.h"
#include "Tests/Support/Processes/TemporaryFolder.h"
#include "Tests/Support/Processes/Waiting.h"

#include <csignal>
#include <fstream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace kestrove::test {

namespace {

bool isAlive(pid_t process) {
    return ::kill(process, 0) == 0 || errno != ESRCH;
}

/// A number that a program has written to a file; 0 as long as it has not.
pid_t numberIn(const std::filesystem::path& file) {
    pid_t number = 0;
    std::ifstream(file) >> number;
    return number;
}

class ChildProcessTest : public testing::Test {
protected:
    ChildProcess::Options options(const std::vector<std::string>& command) {
        return {.command = command,
                .environment = {"WHERE=" + m_folder.path().string()},
                .log = m_folder.path() / "program.log",
                .keptDescriptors = {}};
    }

    TemporaryFolder m_folder;
};

} // namespace

TEST_F(ChildProcessTest, reportsExitCodeAndLog) {
    ChildProcess program(options({"sh", "-c", "echo said; exit 3"}));
    ASSERT_TRUE(program.waitForExit(patience));
    EXPECT_EQ(program.exitCode(), 3);
    EXPECT_EQ(program.logTail(), "said\n");
}

TEST_F(ChildProcessTest, saysWhyAProgramCannotStart) {
    ChildProcess program(options({"/no/such/program"}));
    ASSERT_TRUE(program.waitForExit(patience));
    EXPECT_EQ(program.exitCode(), 127);
    EXPECT_EQ(program.logTail(), "No such file or directory");
}

TEST_F(ChildProcessTest, hidesTheAmbientDesktop) {
    ::setenv("DISPLAY", ":ambient", 1);
    ChildProcess program(options({"sh", "-c", "echo \"[$DISPLAY]\""}));
    ASSERT_TRUE(program.waitForExit(patience));
    ::unsetenv("DISPLAY");
    EXPECT_EQ(program.logTail(), "[]\n");
}

TEST_F(ChildProcessTest, endsAProgramThatIgnoresTerminationWithWhatItStarted) {
    pid_t inner = 0;
    pid_t outer = 0;
    {
        ChildProcess program(
            options({"sh", "-c", "trap '' TERM; sleep 1000 & echo $! > $WHERE/inner; wait; wait"}));
        ASSERT_TRUE(waitUntil([&] { return numberIn(m_folder.path() / "inner") > 0; }));
        inner = numberIn(m_folder.path() / "inner");
        outer = program.processIdentifier();
        ASSERT_TRUE(isAlive(inner));
    }
    EXPECT_FALSE(isAlive(outer));
    EXPECT_TRUE(waitUntil([&] { return !isAlive(inner); }));
}

TEST_F(ChildProcessTest, programsDieWithATestThatIsKilled) {
    const std::filesystem::path file = m_folder.path() / "orphan";
    const pid_t crashing = ::fork();
    if (crashing == 0) {
        const ChildProcess program(options({"sleep", "1000"}));
        std::ofstream(file) << program.processIdentifier() << std::flush;
        ::raise(SIGKILL);
    }
    ASSERT_EQ(::waitpid(crashing, nullptr, 0), crashing);
    const pid_t orphan = numberIn(file);
    ASSERT_GT(orphan, 0);
    EXPECT_TRUE(waitUntil([&] { return !isAlive(orphan); }));
}

} // namespace kestrove::test
