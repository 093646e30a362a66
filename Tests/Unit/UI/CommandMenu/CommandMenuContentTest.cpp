#include "UI/CommandMenu/CommandMenuContent.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestrove {
namespace {

using State = CaptureSessionState;

const MenuShortcutTexts allBound{"⌃⌘S", "⌃⌘P", "⌃⌘W", "⌃⌘H"};

MenuState withPicker(State session = State::stopped()) {
    MenuState state;
    state.session = session;
    state.offers.hasPicker = true;
    return state;
}

std::vector<std::string> labels(const std::vector<CommandMenuEntry>& entries) {
    std::vector<std::string> result;
    result.reserve(entries.size());
    for (const auto& entry : entries)
        result.push_back(entry ? entry->label() : "-");
    return result;
}

using Texts = std::vector<std::string>;

TEST(CommandMenuContent, HasEveryEntryInItsOrderWithItsShortcut) {
    EXPECT_EQ(labels(commandMenuContent(withPicker(), allBound)),
              (Texts{"画面共有を開始  ⌃⌘S", "プレビューから選ぶ…  ⌃⌘P", "-",
                     "出力ウィンドウを表示  ⌃⌘W", "出力ウィンドウを隠す  ⌃⌘H"}));
}

TEST(CommandMenuContent, SaysNothingOfShortcutsThatAreNotInForce) {
    auto state = withPicker();
    state.shortcuts = allBound; // only wished for
    EXPECT_EQ(labels(commandMenuContent(state, {})),
              (Texts{"画面共有を開始", "プレビューから選ぶ…", "-", "出力ウィンドウを表示",
                     "出力ウィンドウを隠す"}));
}

TEST(CommandMenuContent, LeavesTheHiddenMode) {
    auto state = withPicker(State::running());
    state.hideOutputWindow = true;
    const auto entries = commandMenuContent(state, allBound);
    EXPECT_EQ(labels(entries),
              (Texts{"画面共有を停止  ⌃⌘S", "プレビューから選ぶ…  ⌃⌘P", "-",
                     "出力ウィンドウを表示  ⌃⌘W", "出力ウィンドウの非表示を解除  ⌃⌘H"}));
    EXPECT_EQ(entries[3]->command, MenuCommand::leaveHiddenMode);
    EXPECT_EQ(entries[4]->command, MenuCommand::leaveHiddenMode);
}

struct CommandMenuRow {
    State session;
    MenuCommand command;
    const char* title;
    bool canStartOrStop;
    bool canPick;
};

class CommandMenuInEveryState : public testing::TestWithParam<CommandMenuRow> {};

constexpr auto start = MenuCommand::start;
constexpr auto stop = MenuCommand::stop;
INSTANTIATE_TEST_SUITE_P(
    EveryState, CommandMenuInEveryState,
    testing::Values(
        CommandMenuRow{State::permissionRequired(ScreenRecordingPermission::notDetermined), start,
                       "画面共有を開始", true, false},
        CommandMenuRow{State::permissionRequired(ScreenRecordingPermission::denied), start,
                       "画面共有を開始", true, false},
        CommandMenuRow{State::permissionRequired(ScreenRecordingPermission::revoked), start,
                       "画面共有を開始", true, false},
        CommandMenuRow{State::recoveryRequired(CaptureRecoveryReason::streamStopped), start,
                       "画面共有を開始", true, true},
        CommandMenuRow{State::stopped(), start, "画面共有を開始", true, true},
        CommandMenuRow{State::starting(), stop, "画面共有を停止", true, true},
        CommandMenuRow{State::running(), stop, "画面共有を停止", true, true},
        CommandMenuRow{State::switching(), stop, "画面共有を停止", true, true},
        CommandMenuRow{State::waitingForSource(), stop, "画面共有を停止", true, true},
        CommandMenuRow{State::stopping(), stop, "画面共有を停止", false, true}));

TEST_P(CommandMenuInEveryState, OffersWhatCanBeDone) {
    const auto& row = GetParam();
    const auto entries = commandMenuContent(withPicker(row.session), {});
    ASSERT_EQ(entries.size(), 5U);
    EXPECT_EQ(entries[0]->command, row.command);
    EXPECT_EQ(entries[0]->title, row.title);
    EXPECT_EQ(entries[0]->isEnabled, row.canStartOrStop);
    EXPECT_EQ(entries[1]->command, MenuCommand::showSourcePicker);
    EXPECT_EQ(entries[1]->isEnabled, row.canPick);
    EXPECT_TRUE(entries[3]->isEnabled && entries[4]->isEnabled);
}

TEST(CommandMenuContent, OffersThePickerOnlyWhereThereIsOne) {
    EXPECT_EQ(labels(commandMenuContent({}, {})),
              (Texts{"画面共有を開始", "-", "出力ウィンドウを表示", "出力ウィンドウを隠す"}));
}

} // namespace
} // namespace kestrove
