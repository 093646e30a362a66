#include "Tests/Unit/UI/MenuBarView/MenuBarViewFixture.h"

namespace kestrove {
namespace {

class MenuBarViewTest : public MenuBarViewFixture {};

TEST_F(MenuBarViewTest, StartsAndStopsTheSession) {
    run(MenuCommand::start);
    EXPECT_EQ(bench.state(), CaptureSessionState::running());
    EXPECT_EQ(view->content().header.statusMessage, "稼働中");
    EXPECT_EQ(view->content().session.command, MenuCommand::stop);
    run(MenuCommand::stop);
    EXPECT_EQ(bench.state(), CaptureSessionState::stopped());
}

TEST_F(MenuBarViewTest, ShowsWhatTheControllerPublishes) {
    EXPECT_TRUE(view->content().sources.displays.emptyText);
    run(MenuCommand::start);
    const auto content = view->content();
    EXPECT_EQ(content.sources.displays.rows.size(), 2U);
    EXPECT_EQ(content.sources.windows.rows.size(), 2U);
    EXPECT_TRUE(content.sources.displays.rows[0].isLive);
    EXPECT_FALSE(content.recovery);
}

TEST_F(MenuBarViewTest, GuidesAfterAFailureAndTriesAgain) {
    bench.permission = ScreenRecordingPermission::denied;
    run(MenuCommand::start);
    const auto recovery = view->content().recovery;
    ASSERT_TRUE(recovery);
    EXPECT_EQ(recovery->guidance, "システム設定で画面収録を許可してから再試行してください。");
    run(MenuCommand::openScreenRecordingPreferences);
    EXPECT_EQ(done, Texts{"preferences"});
    bench.permission = ScreenRecordingPermission::granted;
    run(recovery->retry.command);
    EXPECT_EQ(bench.state(), CaptureSessionState::running());
    EXPECT_FALSE(view->content().recovery);
}

TEST_F(MenuBarViewTest, ListsTheSourcesOnDemand) {
    run(MenuCommand::refreshSources);
    EXPECT_EQ(view->content().sources.windows.rows.size(), 2U);
    EXPECT_EQ(bench.state(), CaptureSessionState::stopped());
}

TEST_F(MenuBarViewTest, ListsTheSourcesAnewWhenItOpens) {
    view->willOpen();
    bench.settle();
    EXPECT_EQ(view->content().sources.windows.rows.size(), 2U);
}

TEST_F(MenuBarViewTest, DoesNotListWithoutPermissionOnlyBecauseItOpens) {
    bench.permission = ScreenRecordingPermission::denied;
    bench.controller->refreshIdlePermissionState();
    bench.settle();
    (void)bench.events();
    view->willOpen();
    bench.settle();
    EXPECT_EQ(bench.events(), Texts{});
    EXPECT_TRUE(view->content().sources.windows.emptyText);
}

TEST_F(MenuBarViewTest, TickingAWindowPicksItAlone) {
    bench.settings->manualSources.set({display1});
    run(MenuCommand::start);
    view->toggle(view->content().sources.windows.rows[0]);
    bench.settle();
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::manual);
    EXPECT_EQ(bench.settings->manualSources.get(), std::vector{window5});
    EXPECT_EQ(bench.settings->manualWindowSelections().at(5).owner, editor);
    EXPECT_EQ(bench.active(), window5);
    const auto content = view->content();
    EXPECT_TRUE(content.sources.windows.rows[0].isSelected);
    EXPECT_TRUE(content.sources.windows.rows[0].isLive);
    EXPECT_FALSE(content.sources.displays.rows[0].isSelected);
}

TEST_F(MenuBarViewTest, TickingAgainTakesItBack) {
    run(MenuCommand::start);
    view->toggle(view->content().sources.windows.rows[0]);
    bench.settle();
    view->toggle(view->content().sources.windows.rows[0]);
    bench.settle();
    EXPECT_TRUE(bench.settings->manualSources.get().empty());
    EXPECT_FALSE(view->content().sources.windows.rows[0].isSelected);
    EXPECT_EQ(view->content().header.statusMessage, "ソース待ち");
}

TEST_F(MenuBarViewTest, ChoosesTheFollowMode) {
    run(MenuCommand::start);
    view->toggle(view->content().sources.windows.rows[0]);
    bench.settle();
    view->choose(FollowMode::mouse);
    bench.settle();
    EXPECT_EQ(bench.settings->followMode.get(), FollowMode::mouse);
    EXPECT_EQ(bench.active(), display1);
    const auto content = view->content();
    EXPECT_TRUE(content.sources.followModes[0].isCurrent);
    EXPECT_FALSE(content.sources.windows.rows[0].isSelected);
}

TEST_F(MenuBarViewTest, HidesAndShowsTheOutputWindow) {
    (void)bench.events();
    run(MenuCommand::showOutputWindow);
    EXPECT_EQ(bench.events(), Texts{"show window"});
    run(MenuCommand::hideOutputWindow);
    EXPECT_TRUE(bench.settings->hideOutputWindow.get());
    EXPECT_EQ(bench.window.isHidden, true);
    EXPECT_EQ(view->content().outputWindow.size(), 1U);
    EXPECT_EQ(bench.events(), Texts{});
    run(MenuCommand::leaveHiddenMode);
    EXPECT_FALSE(bench.settings->hideOutputWindow.get());
    EXPECT_EQ(bench.window.isHidden, false);
    EXPECT_EQ(bench.events(), Texts{"show window"});
}

TEST_F(MenuBarViewTest, OpensTheOtherWindows) {
    for (const auto command : {MenuCommand::showSourcePicker, MenuCommand::openSettings,
                               MenuCommand::openPrivacyPolicy, MenuCommand::quit})
        view->run(command);
    EXPECT_EQ(done, (Texts{"picker", "settings", "privacy", "quit"}));
}

TEST_F(MenuBarViewTest, ShowsTheShortcutsOfTheMoment) {
    shortcuts.showPicker = "⌃⌘P";
    EXPECT_EQ(view->content().picker->label(), "プレビューから選ぶ…  ⌃⌘P");
    shortcuts = {};
    EXPECT_EQ(view->content().picker->label(), "プレビューから選ぶ…");
}

TEST_F(MenuBarViewTest, TellsOfChangesOnceAndWhenTheyCanBeRead) {
    Texts told;
    const auto watching =
        view->onChanged([&] { told.push_back(view->content().header.statusMessage); });
    bench.settings->hideOutputWindow.set(true);
    bench.settings->followMode.set(FollowMode::focusedApp);
    EXPECT_EQ(told, Texts{});
    bench.settle();
    EXPECT_EQ(told, Texts{"停止中"});
    told.clear();
    run(MenuCommand::start);
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.back(), "稼働中");
}

} // namespace
} // namespace kestrove
