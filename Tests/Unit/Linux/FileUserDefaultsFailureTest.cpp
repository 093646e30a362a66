#include "Platform/Linux/FileUserDefaults.h"

#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdint>
#include <iterator>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kestrove {
namespace {

using test::contentOf;
using test::setContent;
using Lines = std::vector<std::string>;

/// A settings file that cannot be written, or read, for a while.
class FileUserDefaultsFailure : public testing::Test {
public:
    ~FileUserDefaultsFailure() override { ::chmod(file.parent_path().c_str(), 0700); }

protected:
    FileUserDefaultsFailure() { std::filesystem::create_directory(file.parent_path()); }

    FileUserDefaults open() {
        return FileUserDefaults(file, [this](LogLevel level, std::string_view line) {
            const auto* const name = level == LogLevel::error ? "error: " : "";
            lines.push_back(name + std::string(line));
        });
    }
    /// What was logged since the last call.
    Lines logged() { return std::exchange(lines, {}); }
    [[nodiscard]] std::string failure(std::string_view reason) const {
        return "error: [kestrove] settings cannot be stored, they hold for this run (" +
               file.native() + "): " + std::string(reason);
    }
    [[nodiscard]] std::string recovery() const {
        return "[kestrove] settings are stored again (" + file.native() + ")";
    }
    [[nodiscard]] std::size_t fileCount() const {
        using Files = std::filesystem::directory_iterator;
        return static_cast<std::size_t>(std::distance(Files(file.parent_path()), Files()));
    }

    test::TemporaryFolder folder;
    std::filesystem::path file = folder.path() / "kestrove" / "kestrove.conf";
    Lines lines;
};

/// No file can grow beyond `bytes`, as on a full disk.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    void (*m_handler)(int);
    rlimit m_before{};
};

TEST_F(FileUserDefaultsFailure, KeepsTheOldFileWhenTheDiskIsFullAndStoresBothValuesLater) {
    auto defaults = open();

    defaults.setText("first", "old");
    {
        const FileSizeLimit full(12);
        defaults.setText("first", "new, and longer than the disk can take");
        EXPECT_EQ(defaults.text("first"), "new, and longer than the disk can take");
        EXPECT_EQ(logged(), Lines{failure("File too large")});
        defaults.setText("first", "new, and longer than the disk can take");
        EXPECT_EQ(logged(), Lines()) << "one line is enough";
    }
    EXPECT_EQ(contentOf(file), "first=old\n");
    EXPECT_EQ(fileCount(), 1U);
    defaults.setInteger("second", 2);
    EXPECT_EQ(contentOf(file), "first=new, and longer than the disk can take\nsecond=2\n");
    EXPECT_EQ(logged(), Lines{recovery()});
}

TEST_F(FileUserDefaultsFailure, LeavesAReadOnlyFileAsItIsUntilItCanBeWritten) {
    setContent(file, "key=1\n");
    ::chmod(file.c_str(), 0400);
    auto defaults = open();
    defaults.setInteger("key", 2);
    EXPECT_EQ(defaults.integer("key"), 2);
    EXPECT_EQ(contentOf(file), "key=1\n");
    EXPECT_EQ(logged(), Lines{failure("Permission denied")});
    ::chmod(file.c_str(), 0600);
    defaults.setBoolean("other", true);
    EXPECT_EQ(contentOf(file), "key=2\nother=true\n");
    EXPECT_EQ(logged(), Lines{recovery()});
    EXPECT_EQ(fileCount(), 1U);
}

/// Nobody's rights, for a test that the superuser runs: the superuser writes everywhere.
class OrdinaryUser {
public:
    OrdinaryUser() {
        if (m_before == 0)
            EXPECT_EQ(::seteuid(65534), 0);
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser() { EXPECT_EQ(::seteuid(m_before), 0); }

private:
    uid_t m_before = ::geteuid();
};

TEST_F(FileUserDefaultsFailure, LeavesAReadOnlyFolderAsItIsUntilItCanBeWritten) {
    setContent(file, "key=1\n");
    ::chmod(file.c_str(), 0666);
    ::chmod(folder.path().c_str(), 0755);
    ::chmod(file.parent_path().c_str(), 0555);
    auto defaults = open();
    EXPECT_EQ(defaults.integer("key"), 1);
    {
        const OrdinaryUser user;
        defaults.setInteger("key", 2);
    }
    EXPECT_EQ(defaults.integer("key"), 2);
    EXPECT_EQ(contentOf(file), "key=1\n");
    EXPECT_EQ(logged(), Lines{failure("Permission denied")});
    EXPECT_EQ(fileCount(), 1U);

    ::chmod(file.parent_path().c_str(), 0777);
    {
        const OrdinaryUser user;
        defaults.setInteger("other", 3);
    }
    EXPECT_EQ(contentOf(file), "key=2\nother=3\n");
    EXPECT_EQ(logged(), Lines{recovery()});
}

TEST_F(FileUserDefaultsFailure, NeverReplacesAFileThatMayNotBeRead) {
    setContent(file, "key=1\n");
    ::chmod(file.c_str(), 0);
    ::chmod(file.parent_path().c_str(), 0777);
    ::chmod(folder.path().c_str(), 0755);
    {
        const OrdinaryUser user;
        auto defaults = open();
        EXPECT_EQ(logged(), Lines{"error: [kestrove] settings cannot be read (" + file.native() +
                                  "): Permission denied"});
        defaults.setInteger("key", 2);
        EXPECT_EQ(logged(), Lines{failure("Permission denied")});
    }
    EXPECT_EQ(contentOf(file), ::geteuid() == 0 ? "key=1\n" : "");
    ::chmod(file.c_str(), 0600);
    EXPECT_EQ(contentOf(file), "key=1\n");
}

TEST_F(FileUserDefaultsFailure, GoesOnWithAFolderInItsPlaceAndStoresOnceThatHasGone) {
    std::filesystem::create_directories(file / "inside");
    auto defaults = open();
    EXPECT_EQ(logged(), Lines{"error: [kestrove] settings cannot be read (" + file.native() +
                              "): Is a directory"});
    defaults.setInteger("key", 1);
    EXPECT_TRUE(std::filesystem::is_directory(file / "inside"));
    EXPECT_EQ(logged(), Lines{failure("Is a directory")});
    std::filesystem::remove_all(file);
    defaults.setInteger("other", 2);
    EXPECT_EQ(contentOf(file), "key=1\nother=2\n");
    EXPECT_EQ(logged(), Lines{recovery()});
}

TEST_F(FileUserDefaultsFailure, NeitherWaitsForAPipeNorReplacesIt) {
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    auto defaults = open();
    defaults.setInteger("key", 1);
    EXPECT_EQ(defaults.integer("key"), 1);
    EXPECT_TRUE(std::filesystem::is_fifo(file));
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileUserDefaultsFailure, NeitherReadsADeviceNorReplacesIt) {
    std::filesystem::create_symlink("/dev/zero", file);
    auto defaults = open();
    defaults.setInteger("key", 1);
    EXPECT_EQ(defaults.integer("key"), 1);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/zero"));
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileUserDefaultsFailure, LeavesAFileAloneThatIsTooLargeToBeOurs) {
    setContent(file, "key=1\n");
    std::filesystem::resize_file(file, std::uintmax_t(1) << 36);
    auto defaults = open();
    EXPECT_EQ(defaults.integer("key"), std::nullopt);
    defaults.setInteger("key", 2);
    EXPECT_EQ(logged().size(), 2U);
    EXPECT_EQ(std::filesystem::file_size(file), std::uintmax_t(1) << 36);
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileUserDefaultsFailure, FollowsALinkToAFileThatIsNotThereYet) {
    std::filesystem::create_directory(folder.path() / "elsewhere");
    const auto elsewhere = folder.path() / "elsewhere" / "mine.conf";
    std::filesystem::create_symlink("../elsewhere/mine.conf", file);
    auto defaults = open();
    defaults.setInteger("key", 1);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(contentOf(elsewhere), "key=1\n");
    EXPECT_EQ(logged(), Lines());
}

TEST_F(FileUserDefaultsFailure, GoesOnWithALinkThatLeadsInACircle) {
    std::filesystem::create_symlink(file.filename(), file);
    auto defaults = open();
    defaults.setInteger("key", 1);
    EXPECT_EQ(defaults.integer("key"), 1);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(logged().size(), 2U);
}

} // namespace
} // namespace kestrove
