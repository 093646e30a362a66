#include "Platform/Linux/Processes.h"
#include "Platform/Linux/ProcessEnd.h"
#include "Tests/Support/PollMainLoop/PollMainLoop.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kestrove {
namespace {

/// A process that does nothing until it is killed.
class IdleProcess {
public:
    IdleProcess()
        : m_process(fork()) {
        if (m_process == 0) {
            while (true)
                pause();
        }
    }
    IdleProcess(const IdleProcess&) = delete;
    IdleProcess& operator=(const IdleProcess&) = delete;
    ~IdleProcess() {
        kill();
        collect();
    }

    [[nodiscard]] ProcessID identifier() const { return m_process; }
    void kill() const {
        if (!m_isCollected)
            ::kill(m_process, SIGKILL);
    }
    void collect() {
        if (!m_isCollected)
            waitpid(m_process, nullptr, 0);
        m_isCollected = true;
    }

private:
    pid_t m_process;
    bool m_isCollected = false;
};

TEST(ProcessStartTime, TellsOneProcessFromAnother) {
    const auto own = processStartTime(getpid());
    ASSERT_TRUE(own);
    EXPECT_EQ(processStartTime(getpid()), own);
    EXPECT_EQ(processStartTime(0), std::nullopt);
    EXPECT_EQ(processStartTime(-1), std::nullopt);
}

TEST(ProcessStartTime, IsAbsentForAProcessThatHasEndedAlsoBeforeItIsCollected) {
    IdleProcess process;
    ASSERT_TRUE(processStartTime(process.identifier()));
    process.kill();
    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(process.identifier()), &info, WEXITED | WNOWAIT);
    EXPECT_EQ(processStartTime(process.identifier()), std::nullopt);
    process.collect();
    EXPECT_EQ(processStartTime(process.identifier()), std::nullopt);
}

TEST(ProcessEnd, IsToldOnceFromTheLoop) {
    PollMainLoop loop;
    IdleProcess process;
    int told = 0;
    const auto end = ProcessEnd::watch(loop, process.identifier(), [&] { ++told; });
    ASSERT_TRUE(end);
    loop.runUntilIdle();
    EXPECT_EQ(told, 0);
    process.kill();
    EXPECT_TRUE(loop.spinUntil([&] { return told == 1; }));
    process.collect();
    loop.runUntilIdle();
    EXPECT_EQ(told, 1);
}

TEST(ProcessEnd, MayBeDestroyedByWhatItTells) {
    PollMainLoop loop;
    IdleProcess process;
    std::unique_ptr<ProcessEnd> end;
    bool wasTold = false;
    end = ProcessEnd::watch(loop, process.identifier(), [&] {
        end.reset();
        wasTold = true;
    });
    process.kill();
    EXPECT_TRUE(loop.spinUntil([&] { return wasTold; }));
}

TEST(ProcessEnd, IsNotToldOnceItIsDestroyed) {
    PollMainLoop loop;
    IdleProcess process;
    IdleProcess other;
    int told = 0;
    bool isOtherTold = false;
    auto end = ProcessEnd::watch(loop, process.identifier(), [&] { ++told; });
    const auto last = ProcessEnd::watch(loop, other.identifier(), [&] { isOtherTold = true; });
    end.reset();
    process.kill();
    process.collect();
    other.kill();
    EXPECT_TRUE(loop.spinUntil([&] { return isOtherTold; }));
    EXPECT_EQ(told, 0);
}

TEST(ProcessEnd, IsNoneOfAProcessThatDoesNotRun) {
    PollMainLoop loop;
    IdleProcess process;
    process.kill();
    process.collect();
    EXPECT_EQ(ProcessEnd::watch(loop, process.identifier(), [] {}), nullptr);
}

} // namespace
} // namespace kestrove
