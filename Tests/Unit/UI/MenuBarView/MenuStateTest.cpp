#include "UI/MenuBarView/MenuState.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrove {
namespace {

const auto display1 = CaptureSource::display(1);
const auto window5 = CaptureSource::window(5);
const WindowOwnerIdentity editor{50, "org.example.editor"};

/// Two displays and a window.
MenuState someSources() {
    MenuState state;
    state.availableSources.displays = {
        {display1, "Built-in", "1920 × 1080", std::nullopt},
        {CaptureSource::display(2), "Beamer", std::nullopt, std::nullopt}};
    state.availableSources.windows = {{window5, "Notes", "Editor", editor}};
    return state;
}

std::vector<MenuSourceRow> allRows(const MenuContent& content) {
    auto rows = content.sources.displays.rows;
    const auto& windows = content.sources.windows.rows;
    rows.insert(rows.end(), windows.begin(), windows.end());
    return rows;
}

TEST(MenuState, NamesTheProductAndTheStatus) {
    MenuState state;
    EXPECT_EQ(menuContent(state).header, (MenuHeader{"kestrove", "停止中"}));
    state.session = CaptureSessionState::waitingForSource();
    EXPECT_EQ(menuContent(state).header.statusMessage, "ソース待ち");
}

TEST(MenuState, LetsOnlyUntickAWindowOfWhichNobodyKnowsWhoseItIs) {
    auto state = someSources();
    state.picks.followMode = FollowMode::manual;
    const auto isEnabled = [&] {
        return menuContent(state).sources.windows.rows.front().isEnabled;
    };
    EXPECT_TRUE(isEnabled());
    state.availableSources.windows.front().windowOwner.reset();
    EXPECT_FALSE(isEnabled());
    EXPECT_TRUE(menuContent(state).sources.displays.rows.front().isEnabled);
    state.picks.manualSources = {window5};
    EXPECT_TRUE(isEnabled());
}

TEST(MenuState, HasNoRecoverySectionWithoutGuidance) {
    MenuState state;
    state.session = CaptureSessionState::running();
    EXPECT_FALSE(menuContent(state).recovery);
}

TEST(MenuState, ShowsTheGuidanceWithTwoButtons) {
    MenuState state;
    state.recoveryGuidance = "古い映像を消して安全に停止しました。再試行してください。";
    state.offers.hasScreenRecordingPreferences = true;
    const auto recovery = menuContent(state).recovery;
    ASSERT_TRUE(recovery);
    EXPECT_EQ(recovery->symbol, "exclamationmark.triangle.fill");
    EXPECT_EQ(recovery->guidance, state.recoveryGuidance);
    EXPECT_EQ(recovery->retry.command, MenuCommand::start);
    EXPECT_EQ(recovery->retry.help, "画面収録権限と共有ソースを再確認します");
    EXPECT_TRUE(recovery->retry.isEnabled);
    EXPECT_EQ(recovery->openPreferences.command, MenuCommand::openScreenRecordingPreferences);
    EXPECT_EQ(recovery->openPreferences.help, "システム設定の画面収録権限を開きます");
    EXPECT_TRUE(recovery->openPreferences.isEnabled);
}

TEST(MenuState, SaysWhenTheDesktopHasNoPageForThePermission) {
    MenuState state;
    state.recoveryGuidance = "guidance";
    EXPECT_FALSE(menuContent(state).recovery->openPreferences.isEnabled);
}

struct SessionButtonCase {
    CaptureSessionState state;
    MenuCommand command;
    const char* title;
    bool isEnabled;
};

class SessionButton : public testing::TestWithParam<SessionButtonCase> {};

using State = CaptureSessionState;
INSTANTIATE_TEST_SUITE_P(
    EveryState, SessionButton,
    testing::Values(SessionButtonCase{State::permissionRequired(ScreenRecordingPermission::denied),
                                      MenuCommand::start, "開始", true},
                    SessionButtonCase{State::recoveryRequired(CaptureRecoveryReason::streamStopped),
                                      MenuCommand::start, "開始", true},
                    SessionButtonCase{State::stopped(), MenuCommand::start, "開始", true},
                    SessionButtonCase{State::starting(), MenuCommand::stop, "停止", true},
                    SessionButtonCase{State::running(), MenuCommand::stop, "停止", true},
                    SessionButtonCase{State::switching(), MenuCommand::stop, "停止", true},
                    SessionButtonCase{State::waitingForSource(), MenuCommand::stop, "停止", true},
                    SessionButtonCase{State::stopping(), MenuCommand::stop, "停止", false}));

TEST_P(SessionButton, StopsWhatIsOnAndStartsWhatIsOff) {
    MenuState state;
    state.session = GetParam().state;
    const auto button = menuContent(state).session;
    EXPECT_EQ(button.command, GetParam().command);
    EXPECT_EQ(button.label(), GetParam().title);
    EXPECT_EQ(button.isEnabled, GetParam().isEnabled);
}

TEST(MenuState, OffersThePickerOnlyWhereThereIsOne) {
    MenuState state;
    state.shortcuts.showPicker = "⌃⌘P";
    EXPECT_FALSE(menuContent(state).picker);
    state.offers.hasPicker = true;
    const auto picker = menuContent(state).picker;
    ASSERT_TRUE(picker);
    EXPECT_EQ(picker->command, MenuCommand::showSourcePicker);
    EXPECT_EQ(picker->label(), "プレビューから選ぶ…  ⌃⌘P");
    state.shortcuts.showPicker.reset();
    EXPECT_EQ(menuContent(state).picker->label(), "プレビューから選ぶ…");
}

TEST(MenuState, MarksTheFollowMode) {
    MenuState state;
    state.picks.followMode = FollowMode::focusedApp;
    const auto sources = menuContent(state).sources;
    EXPECT_EQ(sources.title, "共有するソース");
    ASSERT_EQ(sources.followModes.size(), 2U);
    EXPECT_EQ(sources.followModes[0],
              (MenuFollowModeRow{FollowMode::mouse, "マウス位置（自動追従）", "circle", false}));
    EXPECT_EQ(sources.followModes[1],
              (MenuFollowModeRow{FollowMode::focusedApp, "フォーカス中のアプリ（自動追従）",
                                 "largecircle.fill.circle", true}));
}

TEST(MenuState, MarksNoFollowModeWhileTheUserPicks) {
    MenuState state;
    state.picks.followMode = FollowMode::manual;
    for (const auto& row : menuContent(state).sources.followModes) {
        EXPECT_EQ(row.symbol, "circle");
        EXPECT_FALSE(row.isCurrent);
    }
}

TEST(MenuState, ListsTheSources) {
    const auto sources = menuContent(someSources()).sources;
    EXPECT_EQ(sources.displays.header, "ディスプレイ 2 件（複数選択時はアクティブに切替）");
    EXPECT_FALSE(sources.displays.emptyText);
    ASSERT_EQ(sources.displays.rows.size(), 2U);
    EXPECT_EQ(sources.displays.rows[0], (MenuSourceRow{display1, std::nullopt, "Built-in",
                                                       "1920 × 1080", "square", false, false}));
    EXPECT_EQ(sources.displays.rows[1].title, "Beamer");
    EXPECT_EQ(sources.windows.header, "ウィンドウ 1");
    EXPECT_FALSE(sources.windows.emptyText);
    ASSERT_EQ(sources.windows.rows.size(), 1U);
    EXPECT_EQ(sources.windows.rows[0],
              (MenuSourceRow{window5, editor, "Notes", "Editor", "square", false, false}));
}

TEST(MenuState, SaysThatThereIsNothingToShareAndKeepsTheRefreshButton) {
    const auto sources = menuContent({}).sources;
    EXPECT_EQ(sources.displays.header, "ディスプレイ 0 件（複数選択時はアクティブに切替）");
    EXPECT_EQ(sources.displays.emptyText, "利用可能なディスプレイがありません");
    EXPECT_EQ(sources.windows.header, "ウィンドウ 0");
    EXPECT_EQ(sources.windows.emptyText,
              "利用可能なウィンドウがありません。「ソース一覧を更新」を押してください");
    EXPECT_EQ(sources.refresh.command, MenuCommand::refreshSources);
    EXPECT_EQ(sources.refresh.label(), "ソース一覧を更新");
}

TEST(MenuState, TicksWhatTheUserPicked) {
    auto state = someSources();
    state.picks.followMode = FollowMode::manual;
    state.picks.manualSources = {window5};
    const auto content = menuContent(state);
    EXPECT_FALSE(content.sources.displays.rows[0].isSelected);
    EXPECT_TRUE(content.sources.windows.rows[0].isSelected);
    EXPECT_EQ(content.sources.windows.rows[0].symbol, "checkmark.square.fill");
}

TEST(MenuState, TicksNothingWhileFollowingAutomatically) {
    for (const auto mode : {FollowMode::mouse, FollowMode::focusedApp}) {
        auto state = someSources();
        state.picks.followMode = mode;
        state.picks.manualSources = {display1, window5};
        for (const auto& row : allRows(menuContent(state))) {
            EXPECT_FALSE(row.isSelected);
            EXPECT_EQ(row.symbol, "square");
        }
    }
}

TEST(MenuState, MarksTheLiveSourceAlsoUnticked) {
    auto state = someSources();
    state.activeSource = display1;
    const auto content = menuContent(state);
    EXPECT_TRUE(content.sources.displays.rows[0].isLive);
    EXPECT_FALSE(content.sources.displays.rows[1].isLive);
    EXPECT_FALSE(content.sources.windows.rows[0].isLive);
}

TEST(MenuState, TellsADisplayFromAWindowOfTheSameNumber) {
    auto state = someSources();
    state.picks.followMode = FollowMode::manual;
    state.picks.manualSources = {CaptureSource::display(5)};
    state.activeSource = CaptureSource::display(5);
    EXPECT_FALSE(state.picks.isManuallySelected(window5));
    EXPECT_FALSE(state.isLive(window5));
}

TEST(MenuState, NotesThatUnconfirmedPicksAreKept) {
    auto state = someSources();
    EXPECT_FALSE(menuContent(state).sources.note);
    state.unavailableManualSources = {window5};
    EXPECT_EQ(menuContent(state).sources.note,
              "確認できない選択候補は保持しています。終了済みならチェックを外してください。");
}

TEST(MenuState, ShowsAndHidesTheOutputWindow) {
    MenuState state;
    state.shortcuts.showWindow = "⌃⌘W";
    state.shortcuts.hideToggle = "⌃⌘H";
    const auto buttons = menuContent(state).outputWindow;
    ASSERT_EQ(buttons.size(), 2U);
    EXPECT_EQ(buttons[0].command, MenuCommand::showOutputWindow);
    EXPECT_EQ(buttons[0].label(), "出力ウィンドウを表示  ⌃⌘W");
    EXPECT_EQ(buttons[1].command, MenuCommand::hideOutputWindow);
    EXPECT_EQ(buttons[1].label(), "出力ウィンドウを隠す  ⌃⌘H");
}

TEST(MenuState, OnlyOffersToLeaveTheHiddenModeWhileInIt) {
    MenuState state;
    state.hideOutputWindow = true;
    state.shortcuts.hideToggle = "⌃⌘H";
    const auto buttons = menuContent(state).outputWindow;
    ASSERT_EQ(buttons.size(), 1U);
    EXPECT_EQ(buttons[0].command, MenuCommand::leaveHiddenMode);
    EXPECT_EQ(buttons[0].label(), "出力ウィンドウを表示（非表示モード解除）  ⌃⌘H");
}

TEST(MenuState, OffersTheSettingsOnlyWhereThereAreSome) {
    MenuState state;
    EXPECT_FALSE(menuContent(state).settings);
    state.offers.hasSettings = true;
    const auto settings = menuContent(state).settings;
    ASSERT_TRUE(settings);
    EXPECT_EQ(settings->command, MenuCommand::openSettings);
    EXPECT_EQ(settings->label(), "設定・ショートカット…");
    EXPECT_EQ(settings->symbol, "gearshape");
}

TEST(MenuState, EndsWithPrivacyAndQuit) {
    const auto content = menuContent({});
    EXPECT_EQ(content.privacyPolicy.command, MenuCommand::openPrivacyPolicy);
    EXPECT_EQ(content.privacyPolicy.label(), "プライバシーポリシー");
    EXPECT_EQ(content.privacyPolicy.help, "Webブラウザでプライバシーポリシーを開きます");
    EXPECT_EQ(content.quit.command, MenuCommand::quit);
    EXPECT_EQ(content.quit.label(), "Kestrove を終了");
    EXPECT_EQ(content.quit.keyEquivalent, "⌘Q");
}

} // namespace
} // namespace kestrove
