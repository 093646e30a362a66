#include "Platform/Linux/JournalLog.h"

#include "Tests/Support/Processes/TemporaryFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace kestrove {
namespace {

/// A socket that listens as the journal does.
class Journal {
public:
    explicit Journal(const std::filesystem::path& path)
        : m_socket(::socket(AF_UNIX, SOCK_DGRAM, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        const auto bound =
            ::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
        EXPECT_EQ(bound, 0);
    }
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;
    ~Journal() { ::close(m_socket); }

    [[nodiscard]] std::string entry() const {
        std::array<char, 4096> buffer{};
        const auto size = ::recv(m_socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
        return size < 0 ? "nothing" : std::string(buffer.data(), static_cast<std::size_t>(size));
    }

private:
    int m_socket;
};

TEST(JournalLog, SendsTheLineWithItsAreaAsFields) {
    const test::TemporaryFolder folder;
    const Journal journal(folder.path() / "socket");
    JournalLog log("kestrove", JournalLog::Echo::no, folder.path() / "socket");
    log.write("an.example", "capture-stream", LogLevel::error, "画面 =1");
    EXPECT_EQ(journal.entry(), "MESSAGE=画面 =1\nPRIORITY=3\nSYSLOG_IDENTIFIER=kestrove\n"
                               "SUBSYSTEM=an.example\nCATEGORY=capture-stream\n");
    log.write("an.example", "", LogLevel::debug, "plain");
    EXPECT_EQ(journal.entry(), "MESSAGE=plain\nPRIORITY=7\nSYSLOG_IDENTIFIER=kestrove\n"
                               "SUBSYSTEM=an.example\n");
}

TEST(JournalLog, LetsNoLineBreakForgeAField) {
    const test::TemporaryFolder folder;
    const Journal journal(folder.path() / "socket");
    JournalLog log("kestrove", JournalLog::Echo::no, folder.path() / "socket");
    log.write("an.example", "", LogLevel::info, "a\nb=c");
    const std::string length("\x05\0\0\0\0\0\0\0", 8);
    EXPECT_EQ(journal.entry(), "MESSAGE\n" + length +
                                   "a\nb=c\nPRIORITY=6\nSYSLOG_IDENTIFIER=kestrove\n"
                                   "SUBSYSTEM=an.example\n");
}

TEST(JournalLog, FallsBackToStandardErrorWhenNobodyListens) {
    const test::TemporaryFolder folder;
    JournalLog log("kestrove", JournalLog::Echo::no, folder.path() / "nobody");
    testing::internal::CaptureStderr();
    log.write("an.example", "capture-stream", LogLevel::error, "line");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "capture-stream: error: line\n");
}

TEST(StandardErrorLog, WritesOneLineEach) {
    StandardErrorLog log;
    testing::internal::CaptureStderr();
    log.write("an.example", "", LogLevel::standard, "[kestrove] hello");
    log.write("an.example", "source-resolution", LogLevel::info, "first");
    log.write("an.example", "source-resolution", LogLevel::debug, "second");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "[kestrove] hello\nsource-resolution: first\nsource-resolution: debug: second\n");
}

/// What a line leaves on standard error when the journal is to be at `socketPath`.
std::string standardErrorOf(const std::string& socketPath) {
    testing::internal::CaptureStderr();
    makeSystemLog("kestrove", socketPath)->write("an.example", "", LogLevel::standard, "line");
    return testing::internal::GetCapturedStderr();
}

TEST(SystemLog, GoesToTheJournalAndToStandardErrorUnlessThatIsTheJournal) {
    const test::TemporaryFolder folder;
    const Journal journal(folder.path() / "socket");
    const std::string entry =
        "MESSAGE=line\nPRIORITY=5\nSYSLOG_IDENTIFIER=kestrove\nSUBSYSTEM=an.example\n";
    ::setenv("JOURNAL_STREAM", "0:0", 1);
    EXPECT_EQ(standardErrorOf(folder.path() / "socket"), "line\n");
    EXPECT_EQ(journal.entry(), entry);

    struct stat status{};
    ASSERT_EQ(::fstat(STDERR_FILENO, &status), 0);
    ::setenv("JOURNAL_STREAM", fmt::format("{}:{}", status.st_dev, status.st_ino).c_str(), 1);
    const auto log = makeSystemLog("kestrove", folder.path() / "socket");
    testing::internal::CaptureStderr();
    log->write("an.example", "", LogLevel::standard, "line");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(journal.entry(), entry);
    ::unsetenv("JOURNAL_STREAM");
}

TEST(SystemLog, GoesToStandardErrorOnceWhereThereIsNoJournal) {
    const test::TemporaryFolder folder;
    EXPECT_EQ(standardErrorOf(folder.path() / "nobody"), "line\n");
}

} // namespace
} // namespace kestrove
