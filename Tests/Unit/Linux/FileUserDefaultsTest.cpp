#include "Platform/Linux/FileUserDefaults.h"

#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrove {
namespace {

using test::contentOf;
using test::setContent;

class FileUserDefaultsTest : public testing::Test {
protected:
    static UserDefaults::Data bytes(std::string_view text) { return {text.begin(), text.end()}; }
    [[nodiscard]] std::size_t fileCount() const {
        using Files = std::filesystem::directory_iterator;
        return static_cast<std::size_t>(std::distance(Files(file.parent_path()), Files()));
    }

    test::TemporaryFolder folder;
    std::filesystem::path file = folder.path() / "kestrove" / "kestrove.conf";
};

TEST_F(FileUserDefaultsTest, StoresEveryTypeForTheNextRun) {
    {
        FileUserDefaults defaults(file);
        EXPECT_EQ(defaults.text("kestrove.followMode"), std::nullopt);
        defaults.setText("kestrove.followMode", "manual");
        defaults.setInteger("kestrove.targetFPS", 24);
        defaults.setBoolean("kestrove.autoStart", true);
        defaults.setData("kestrove.manualSources", bytes(R"([{"display":{"_0":7}}])"));
        EXPECT_EQ(defaults.integer("kestrove.targetFPS"), 24);
    }
    EXPECT_EQ(contentOf(file), "kestrove.followMode=manual\n"
                               "kestrove.targetFPS=24\n"
                               "kestrove.autoStart=true\n"
                               "kestrove.manualSources=[{\"display\":{\"_0\":7}}]\n");
    const FileUserDefaults defaults(file);
    EXPECT_EQ(defaults.text("kestrove.followMode"), "manual");
    EXPECT_EQ(defaults.integer("kestrove.targetFPS"), 24);
    EXPECT_EQ(defaults.boolean("kestrove.autoStart"), true);
    EXPECT_EQ(defaults.data("kestrove.manualSources"), bytes(R"([{"display":{"_0":7}}])"));
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileUserDefaultsTest, CountsAValueOfAnotherTypeAsAbsent) {
    FileUserDefaults defaults(file);
    defaults.setText("key", "30");
    EXPECT_EQ(defaults.integer("key"), std::nullopt);
    defaults.setInteger("key", 1);
    EXPECT_EQ(defaults.boolean("key"), std::nullopt);
    EXPECT_EQ(defaults.text("key"), std::nullopt);
    EXPECT_EQ(defaults.data("key"), std::nullopt);
}

TEST_F(FileUserDefaultsTest, KeepsCommentsUnknownKeysAndWhatItCannotRead) {
    std::filesystem::create_directory(file.parent_path());
    using namespace std::string_literals;
    const auto strange = "not a line of ours\n = 3\nbad=hex:zz\n\xff\xfe\0\n"s;
    setContent(file, "# mine\n" + strange + "\nkestrove.targetFPS = 60\r\nother.key=1");
    FileUserDefaults defaults(file);
    EXPECT_EQ(defaults.integer("kestrove.targetFPS"), 60);
    EXPECT_EQ(defaults.data("bad"), std::nullopt);
    defaults.setInteger("kestrove.targetFPS", 30);
    defaults.setBoolean("kestrove.autoStart", false);
    EXPECT_EQ(contentOf(file), "# mine\n" + strange +
                                   "\nkestrove.targetFPS=30\nother.key=1\n"
                                   "kestrove.autoStart=false\n");
}

TEST_F(FileUserDefaultsTest, LetsTheLastOfSeveralLinesCount) {
    std::filesystem::create_directory(file.parent_path());
    setContent(file, "key=1\nkey=2\n#key=3\n");
    FileUserDefaults defaults(file);
    EXPECT_EQ(defaults.integer("key"), 2);
    defaults.setInteger("key", 4);
    EXPECT_EQ(FileUserDefaults(file).integer("key"), 4);
}

TEST_F(FileUserDefaultsTest, KeepsWhatSomebodyEditedWhileItRan) {
    FileUserDefaults defaults(file);
    defaults.setInteger("kestrove.targetFPS", 24);
    setContent(file, "# a note\nkestrove.targetFPS=60\n");
    defaults.setBoolean("kestrove.autoStart", true);
    EXPECT_EQ(contentOf(file), "# a note\nkestrove.targetFPS=60\nkestrove.autoStart=true\n");
}

TEST_F(FileUserDefaultsTest, IsNotDisturbedByWhatAKilledRunLeftBehind) {
    {
        FileUserDefaults(file).setInteger("key", 1);
    }
    const auto leftOver = file.native() + "." + std::to_string(::getpid()) + ".new";
    setContent(leftOver, "key=2 and half a li");
    FileUserDefaults defaults(file);
    EXPECT_EQ(defaults.integer("key"), 1);
    defaults.setInteger("key", 3);
    EXPECT_EQ(contentOf(file), "key=3\n");
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileUserDefaultsTest, NeverReplacesAFileThatItCannotRead) {
    // A folder in its place: unreadable for everyone, the superuser included.
    std::filesystem::create_directories(file / "inside");
    FileUserDefaults defaults(file);
    defaults.setInteger("key", 1);
    EXPECT_EQ(defaults.integer("key"), 1);
    EXPECT_TRUE(std::filesystem::is_directory(file / "inside"));
    EXPECT_EQ(fileCount(), 1U);
}

TEST_F(FileUserDefaultsTest, GoesOnWhereNoFolderCanBeMade) {
    setContent(folder.path() / "kestrove", "a file where the folder should be");
    FileUserDefaults defaults(file);
    defaults.setText("key", "value");
    EXPECT_EQ(defaults.text("key"), "value");
    FileUserDefaults nowhere{std::filesystem::path()};
    nowhere.setText("key", "value");
    EXPECT_EQ(nowhere.text("key"), "value");
}

TEST_F(FileUserDefaultsTest, KeepsThePermissionsAndALinkToTheFile) {
    FileUserDefaults(file).setInteger("key", 1);
    struct stat status{};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);

    const auto elsewhere = folder.path() / "elsewhere.conf";
    setContent(elsewhere, "key=2\n");
    ::chmod(elsewhere.c_str(), 0640);
    std::filesystem::remove(file);
    std::filesystem::create_symlink(elsewhere, file);
    FileUserDefaults(file).setInteger("key", 3);
    EXPECT_TRUE(std::filesystem::is_symlink(file));
    EXPECT_EQ(contentOf(elsewhere), "key=3\n");
    ASSERT_EQ(::stat(elsewhere.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST_F(FileUserDefaultsTest, LiesInTheConfigurationFolderOfTheUser) {
    ::setenv("HOME", "/home/somebody", 1);
    ::setenv("XDG_CONFIG_HOME", "/config", 1);
    EXPECT_EQ(FileUserDefaults::defaultFile("kestrove"), "/config/kestrove/kestrove.conf");
    ::setenv("XDG_CONFIG_HOME", "relative", 1);
    EXPECT_EQ(FileUserDefaults::defaultFile("kestrove"),
              "/home/somebody/.config/kestrove/kestrove.conf");
    ::unsetenv("XDG_CONFIG_HOME");
    EXPECT_EQ(FileUserDefaults::defaultFile("kestrove"),
              "/home/somebody/.config/kestrove/kestrove.conf");
}

} // namespace
} // namespace kestrove
