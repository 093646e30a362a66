#include "Tests/Unit/Core/ActiveDisplayTracker/ActiveDisplayTrackerFixture.h"

namespace kestrove {
namespace {

constexpr ProcessID editor = 10;
constexpr ProcessID browser = 20;

/// Window server coordinates: y counts down from the highest edge of all screens, 1100.
constexpr Rect windowOnFirst{200, 300, 400, 300};
constexpr Rect windowOnSecond{2100, 300, 400, 300};
constexpr Rect smallOnSecond{2100, 300, 101, 101};

class FocusedAppDisplayTest : public ActiveDisplayTrackerFixture {
protected:
    using Windows = std::vector<WindowDescription>;

    /// The display published at a start with these windows and the editor in front.
    std::optional<DisplayID> displayFor(Windows windows) {
        m_desktop.windowServer.lists[ScriptedFollowedDesktop::onScreenWindows] = std::move(windows);
        m_desktop.workspace.frontmost = RunningApplication{editor, "org.example.editor"};
        m_tracker.start(FollowMode::focusedApp);
        return m_tracker.currentDisplay().get();
    }
    static WindowDescription window(ProcessID owner, Rect bounds) {
        return ScriptedFollowedDesktop::window(1, owner, bounds);
    }
};

TEST_F(FocusedAppDisplayTest, TheLargestWindowDecides) {
    EXPECT_EQ(displayFor({window(browser, {0, 100, 1900, 900}), window(editor, smallOnSecond),
                          window(editor, windowOnFirst)}),
              1U);
    EXPECT_EQ(calls(), (Calls{"frontmost application", "window list 17", "published 1",
                              "watch activation"}));
    EXPECT_EQ(displayFor({window(editor, smallOnSecond)}), 2U);
}

TEST_F(FocusedAppDisplayTest, AmongEqualAreasTheOneFurtherInFrontDecides) {
    EXPECT_EQ(displayFor({window(editor, windowOnFirst), window(editor, windowOnSecond)}), 1U);
    EXPECT_EQ(displayFor({window(editor, windowOnSecond), window(editor, windowOnFirst)}), 2U);
}

TEST_F(FocusedAppDisplayTest, WindowsOfAHundredPointsDoNotCount) {
    m_desktop.pointer.point = onFirst;
    EXPECT_EQ(
        displayFor({window(editor, {2100, 300, 100, 900}), window(editor, {2100, 300, 900, 100})}),
        1U)
        << "the display under the pointer";
    EXPECT_EQ(displayFor({window(editor, {2100, 300, 100.5, 100.5})}), 2U);
}

TEST_F(FocusedAppDisplayTest, WindowsWithoutBoundsOrOwnerDoNotCount) {
    auto withoutBounds = window(editor, windowOnSecond);
    withoutBounds.bounds.reset();
    auto withoutOwner = window(editor, windowOnSecond);
    withoutOwner.ownerProcessID.reset();
    EXPECT_EQ(displayFor({withoutBounds, withoutOwner, window(editor, windowOnFirst)}), 1U);
}

TEST_F(FocusedAppDisplayTest, TheLayerDoesNotMatter) {
    auto panel = window(editor, windowOnSecond);
    panel.layer = 25;
    EXPECT_EQ(displayFor({panel}), 2U);
}

TEST_F(FocusedAppDisplayTest, WithoutWindowsThePointerDecides) {
    m_desktop.pointer.point = onSecond;
    EXPECT_EQ(displayFor({}), 2U);
    EXPECT_EQ(displayFor({window(browser, windowOnFirst)}), 2U);
    m_desktop.pointer.point = nowhere;
    EXPECT_EQ(displayFor({}), 1U) << "the main display";
}

TEST_F(FocusedAppDisplayTest, AListThatCannotBeReadCountsAsEmpty) {
    m_desktop.pointer.point = onSecond;
    m_desktop.workspace.frontmost = RunningApplication{editor, std::nullopt};
    m_tracker.start(FollowMode::focusedApp);
    EXPECT_EQ(m_tracker.currentDisplay().get(), 2U);
}

TEST_F(FocusedAppDisplayTest, AWindowOutsideEveryScreenLeavesItToThePointer) {
    m_desktop.pointer.point = onSecond;
    EXPECT_EQ(displayFor({window(editor, {-900, 300, 400, 300})}), 2U);
}

TEST_F(FocusedAppDisplayTest, AScreenWithoutANumberLeavesItToThePointer) {
    m_desktop.screens.list[1].displayID.reset();
    EXPECT_EQ(displayFor({window(editor, windowOnSecond)}), 1U);
}

TEST_F(FocusedAppDisplayTest, HeightsAreFlippedAtTheHighestEdgeOfAllScreens) {
    m_desktop.screens.list.clear();
    m_desktop.screens.add({0, 0, 1920, 1080}, 1);
    m_desktop.screens.add({0, 1080, 1920, 1080}, 2);
    EXPECT_EQ(displayFor({window(editor, {0, 100, 400, 200})}), 2U) << "2160 - 200 = 1960";
    EXPECT_EQ(displayFor({window(editor, {0, 1080, 400, 200})}), 1U) << "2160 - 1180 = 980";
}

TEST_F(FocusedAppDisplayTest, WithoutScreensTheDisplayIsAbsent) {
    m_desktop.screens.list.clear();
    EXPECT_EQ(displayFor({window(editor, windowOnFirst)}), std::nullopt);
}

TEST_F(FocusedAppDisplayTest, WithoutAFrontmostApplicationTheDisplayIsAbsent) {
    EXPECT_EQ(displayFor({window(editor, windowOnFirst)}), 1U);
    m_desktop.workspace.frontmost.reset();
    m_tracker.recompute(ActiveDisplayTracker::Announcement::whenChanged);
    EXPECT_EQ(m_tracker.currentDisplay().get(), std::nullopt);
    (void)calls();
    m_tracker.recompute(ActiveDisplayTracker::Announcement::whenChanged);
    EXPECT_EQ(calls(), Calls{"frontmost application"}) << "absent already: nothing is sent";
}

TEST_F(FocusedAppDisplayTest, ActivationsAreDebounced) {
    displayFor({window(editor, windowOnFirst), window(browser, windowOnSecond)});
    (void)calls();
    m_desktop.workspace.activate(browser);
    m_desktop.loop.advance(Seconds(0.1));
    m_desktop.workspace.activate(editor);
    m_desktop.loop.advance(Seconds(0.1));
    m_desktop.workspace.activate(browser);
    m_desktop.loop.advance(Seconds(0.149));
    EXPECT_EQ(calls(), Calls());
    EXPECT_EQ(settle(), Calls{"published 2"});
    m_desktop.movePointer(onFirst);
    EXPECT_EQ(settle(), Calls()) << "the pointer is not watched";
}

} // namespace
} // namespace kestrove
