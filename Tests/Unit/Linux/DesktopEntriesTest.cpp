#include "Platform/Linux/DesktopEntries.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace kestrove {
namespace {

namespace fs = std::filesystem;

class DesktopEntriesTest : public testing::Test {
protected:
    DesktopEntriesTest() {
        std::string name = (fs::temp_directory_path() / "kestrove-entries-XXXXXX").string();
        m_folder = mkdtemp(name.data());
    }
    void TearDown() override { fs::remove_all(m_folder); }

    void write(const fs::path& file, const std::string& text) {
        fs::create_directories((m_folder / file).parent_path());
        std::ofstream(m_folder / file) << text;
    }
    fs::path folder(const std::string& name) const { return m_folder / name; }

private:
    fs::path m_folder;
};

TEST_F(DesktopEntriesTest, GiveTheJapaneseNameElseThePlainOne) {
    write("user/applications/org.example.Viewer.desktop",
          "# a comment\n[Desktop Entry]\nName=Viewer\nName[de]=Betrachter\nName[ja]=ビューア\n");
    write("user/applications/plain.desktop", "[Desktop Entry]\nName = Plain Thing\n");
    DesktopEntries entries({folder("user")});
    EXPECT_EQ(entries.applicationName("org.example.Viewer"), "ビューア");
    EXPECT_EQ(entries.applicationName("plain"), "Plain Thing");
    EXPECT_EQ(entries.applicationName("other"), std::nullopt);
}

TEST_F(DesktopEntriesTest, AreFoundByClassAndInAnyCase) {
    write("user/applications/org.example.Editor.desktop",
          "[Desktop Entry]\nName=Editor\nStartupWMClass=Ed-Main\n");
    DesktopEntries entries({folder("user")});
    EXPECT_EQ(entries.applicationName("ed-main"), "Editor");
    EXPECT_EQ(entries.applicationName("Org.example.editor"), "Editor");
}

TEST_F(DesktopEntriesTest, ReadOnlyTheMainGroup) {
    write("user/applications/browser.desktop",
          "[Desktop Entry]\nName=Browser\n[Desktop Action new]\nName=New Window\nName[ja]=窓\n");
    DesktopEntries entries({folder("user")});
    EXPECT_EQ(entries.applicationName("browser"), "Browser");
}

TEST_F(DesktopEntriesTest, OfTheUserComeBeforeThoseOfTheSystem) {
    write("user/applications/tool.desktop", "[Desktop Entry]\nName=Mine\n");
    write("system/applications/tool.desktop", "[Desktop Entry]\nName=Theirs\n");
    write("system/applications/kde/deep.desktop", "[Desktop Entry]\nName=Deep\n");
    DesktopEntries entries({folder("user"), folder("system"), folder("missing")});
    EXPECT_EQ(entries.applicationName("tool"), "Mine");
    EXPECT_EQ(entries.applicationName("kde-deep"), "Deep");
}

TEST_F(DesktopEntriesTest, SkipWhatIsDeletedNamelessOrNoEntry) {
    write("user/applications/gone.desktop", "[Desktop Entry]\nName=Gone\nHidden=true\n");
    write("user/applications/nameless.desktop", "[Desktop Entry]\nExec=true\n=\n");
    write("user/applications/note.txt", "[Desktop Entry]\nName=Note\n");
    DesktopEntries entries({folder("user")});
    EXPECT_EQ(entries.applicationName("gone"), std::nullopt);
    EXPECT_EQ(entries.applicationName("nameless"), std::nullopt);
    EXPECT_EQ(entries.applicationName("note"), std::nullopt);
}

TEST_F(DesktopEntriesTest, LieWhereTheUsersEnvironmentSays) {
    setenv("XDG_DATA_HOME", "/users/somebody/data", 1);
    setenv("XDG_DATA_DIRS", "/opt/share::/usr/share", 1);
    EXPECT_EQ(DesktopEntries::foldersOfTheUser(),
              (std::vector<fs::path>{"/users/somebody/data", "/opt/share", "/usr/share"}));
    unsetenv("XDG_DATA_HOME");
    unsetenv("XDG_DATA_DIRS");
    setenv("HOME", "/users/somebody", 1);
    EXPECT_EQ(
        DesktopEntries::foldersOfTheUser(),
        (std::vector<fs::path>{"/users/somebody/.local/share", "/usr/local/share", "/usr/share"}));
}

} // namespace
} // namespace kestrove
