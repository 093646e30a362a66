#include "Core/SourceLister/SourceLister.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"
#include "Tests/Support/ScriptedDesktop/ScriptedScreens.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kestrove {
namespace {

constexpr auto ownIdentifier = "dev.kestrove";

class SourceListerTest : public testing::Test {
protected:
    [[nodiscard]] SourceLister::Context context() {
        return {m_screens.list, m_ownIdentifier, m_log};
    }
    SourceLister::Lists lists(const WindowIDSet& excluded = {}) {
        return SourceLister::makeLists(m_content, excluded, context());
    }
    SourceLister::Snapshot snapshot(const WindowIDSet& excluded = {}) {
        return SourceLister::makeSnapshot(m_content, excluded, context());
    }
    /// A window that is listed, unless the test spoils it. The next call invalidates it.
    CapturableWindow& addWindow(WindowID number, std::string application = "Editor") {
        return m_content.windows.emplace_back(CapturableWindow{
            number, 0, "Title", Rect{0, 0, 800, 600}, true,
            CapturableApplication{"org.example.editor", std::move(application), 10}});
    }
    std::vector<WindowID> listedWindows(const WindowIDSet& excluded = {}) {
        std::vector<WindowID> numbers;
        for (const auto& info : lists(excluded).windows)
            numbers.push_back(info.source.identifier());
        return numbers;
    }

    ShareableContent m_content;
    ScriptedScreens m_screens;
    std::optional<std::string> m_ownIdentifier = ownIdentifier;
    RecordingLog m_log;
};

using Numbers = std::vector<WindowID>;

TEST_F(SourceListerTest, DisplaysHaveTheirScreensNameAndTheirSize) {
    m_screens.add({0, 0, 1, 1}, std::nullopt, "No number");
    m_screens.add({0, 0, 1, 1}, 7, "Left");
    m_screens.add({0, 0, 1, 1}, 7, "Again");
    m_content.displays = {{9, 1728, 1117}, {7, 640, 480}};
    EXPECT_EQ(lists().displays,
              (std::vector<CaptureSourceInfo>{
                  {CaptureSource::display(9), "ディスプレイ", "1728 × 1117", std::nullopt},
                  {CaptureSource::display(7), "Left", "640 × 480", std::nullopt}}));
}

TEST_F(SourceListerTest, WindowsHaveTheirTitleTheirApplicationAndTheirOwner) {
    addWindow(5).title = "Notes";
    EXPECT_EQ(lists().windows,
              (std::vector<CaptureSourceInfo>{{CaptureSource::window(5), "Notes", "Editor",
                                               WindowOwnerIdentity{10, "org.example.editor"}}}));
}

TEST_F(SourceListerTest, WritesOneDiagnosticLine) {
    m_content.displays = {{1, 100, 100}, {2, 100, 100}};
    addWindow(1);
    addWindow(2).title.reset();
    addWindow(3).windowLayer = 1;
    (void)lists();
    EXPECT_EQ(m_log.lines,
              (std::vector<RecordingLog::Line>{
                  {ownIdentifier, "", LogLevel::standard,
                   "[kestrove] SourceLister: 2 displays, 3 raw windows → 1 shown after filter"}}));
}

TEST_F(SourceListerTest, EmptyContentYieldsEmptyListsAndALineAllTheSame) {
    EXPECT_EQ(lists(), SourceLister::Lists());
    ASSERT_EQ(m_log.lines.size(), 1U);
    EXPECT_EQ(m_log.lines[0].text,
              "[kestrove] SourceLister: 0 displays, 0 raw windows → 0 shown after filter");
}

TEST_F(SourceListerTest, TheSmallestListedWindowIsTwoHundredByOneHundred) {
    addWindow(1).frame = {-50, -50, 200, 100};
    addWindow(2).frame = {0, 0, 199.9, 100};
    addWindow(3).frame = {0, 0, 200, 99.9};
    EXPECT_EQ(listedWindows(), Numbers{1});
}

TEST_F(SourceListerTest, OnlyTitledWindowsOfApplicationsOnTheNormalLayerAreListed) {
    addWindow(1).owningApplication.reset();
    addWindow(2).windowLayer = 3;
    addWindow(3).windowLayer = -1;
    addWindow(4).title.reset();
    addWindow(5).title = "";
    addWindow(6).title = " ";
    EXPECT_EQ(listedWindows(), Numbers{6});
}

TEST_F(SourceListerTest, OurOwnWindowsAreNeverListed) {
    addWindow(1).owningApplication->bundleIdentifier = ownIdentifier;
    addWindow(2).owningApplication->bundleIdentifier = std::string(ownIdentifier) + ".helper";
    addWindow(3);
    EXPECT_EQ(listedWindows({3}), Numbers{2});
    m_ownIdentifier.reset();
    EXPECT_EQ(listedWindows({3}), (Numbers{1, 2})) << "without an identifier none is known as ours";
}

TEST_F(SourceListerTest, WindowsOfTheDesktopsFurnitureAreNotListed) {
    WindowID number = 0;
    for (const auto* hidden :
         {"com.apple.dock", "com.apple.controlcenter", "com.apple.systemuiserver",
          "com.apple.NotificationCenter", "com.apple.WindowManager", "com.apple.loginwindow",
          "com.apple.wallpaper", "com.apple.dock.extra", "com.apple.dockling"})
        addWindow(++number).owningApplication->bundleIdentifier = hidden;
    EXPECT_EQ(listedWindows(), Numbers());
    for (const auto* shown :
         {"com.apple.Dock", "com.apple.notificationcenter", "com.apple", "org.com.apple.dock"})
        addWindow(++number).owningApplication->bundleIdentifier = shown;
    EXPECT_EQ(listedWindows().size(), 4U);
}

TEST_F(SourceListerTest, AnOwnerThatCannotBeRecognisedLaterIsLeftOut) {
    addWindow(1).owningApplication->processID = 0;
    addWindow(2).owningApplication->processID = -1;
    addWindow(3).owningApplication->bundleIdentifier = "";
    addWindow(4).owningApplication->processID = 1;
    const auto windows = lists().windows;
    ASSERT_EQ(windows.size(), 4U);
    EXPECT_FALSE(windows[0].windowOwner);
    EXPECT_FALSE(windows[1].windowOwner);
    EXPECT_FALSE(windows[2].windowOwner);
    EXPECT_EQ(windows[3].windowOwner, (WindowOwnerIdentity{1, "org.example.editor"}));
}

TEST_F(SourceListerTest, WindowsAreSortedByApplicationAndKeepTheirOrderWithinIt) {
    addWindow(1, "Safari");
    addWindow(2, "Finder");
    addWindow(3, "Safari");
    EXPECT_EQ(listedWindows(), (Numbers{2, 1, 3}));
}

TEST_F(SourceListerTest, ManyWindowsOfOneApplicationKeepTheirOrder) {
    Numbers expected;
    for (WindowID number = 1000; number > 0; --number) {
        addWindow(number);
        expected.push_back(number);
    }
    EXPECT_EQ(listedWindows(), expected);
}

TEST_F(SourceListerTest, TheOrderIsOrdinalAfterComposing) {
    addWindow(1, "finder");
    addWindow(2, "Zoom");
    addWindow(3, "\u30AC");       // composed
    addWindow(4, "\u30AB\u3099"); // the same, in two parts
    addWindow(5, "\u30AB\u30AB"); // before both when composed, after 4 when not
    addWindow(6, "E\u0301");      // U+00C9 when composed
    addWindow(7, "Ez");
    addWindow(8, "\U0001F600"); // beyond the 16-bit range
    addWindow(9, "\uFF21");
    addWindow(10, "");
    EXPECT_EQ(listedWindows(), (Numbers{10, 7, 2, 1, 6, 5, 3, 4, 9, 8}));
}

TEST_F(SourceListerTest, SnapshotSetsIgnoreTheFiltersOfTheLists) {
    m_content.displays = {{1, 100, 100}};
    addWindow(10).windowLayer = 3;
    addWindow(11).owningApplication.reset();
    addWindow(12).title = "";
    addWindow(13).isOnScreen = false; // minimised
    addWindow(14);                    // excluded
    const auto taken = snapshot({14});
    EXPECT_EQ(taken.existingSources,
              (CaptureSourceSet{CaptureSource::display(1), CaptureSource::window(10),
                                CaptureSource::window(11), CaptureSource::window(12),
                                CaptureSource::window(13)}));
    EXPECT_EQ(taken.onScreenSources,
              (CaptureSourceSet{CaptureSource::display(1), CaptureSource::window(10),
                                CaptureSource::window(11), CaptureSource::window(12)}));
    EXPECT_EQ(taken.lists, lists({14}));
    ASSERT_EQ(taken.lists.windows.size(), 1U);
    EXPECT_EQ(taken.lists.windows[0].source, CaptureSource::window(13));
    EXPECT_EQ(m_log.lines.size(), 2U) << "a snapshot writes the line too";
}

} // namespace
} // namespace kestrove
