#include "UI/SourcePicker/SourcePickerContent.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

const auto display1 = CaptureSource::display(1);
const auto window1 = CaptureSource::window(1);
const auto window5 = CaptureSource::window(5);

SourcePreview preview(CaptureSource source, std::string title,
                      std::optional<std::string> subtitle) {
    return {source,
            {source, std::move(title), std::move(subtitle), std::nullopt},
            std::make_shared<const StillImage>()};
}

SourcePickerState someSources() {
    SourcePickerState state;
    state.displays = {preview(display1, "Built-in", "1280 × 800")};
    state.windows = {preview(window5, "notes.txt", "Editor"), preview(window1, "Shell", "Term")};
    return state;
}

TEST(SourcePickerContentTest, HasItsTexts) {
    const auto content = sourcePickerContent({});
    EXPECT_EQ(content.title, "ソースを選択");
    EXPECT_EQ(content.caption,
              "クリックで選択／解除。複数選んだ場合はアクティブなものが自動表示されます");
    EXPECT_EQ(content.refreshLabel, "更新");
    EXPECT_EQ(content.refreshSymbol, "arrow.clockwise");
    EXPECT_EQ(std::string(SourcePickerTexts::windowTitle), "kestrove — ソース選択");
    EXPECT_EQ(std::string(SourcePickerTexts::liveBadge), "LIVE");
}

TEST(SourcePickerContentTest, LetsOnlyUntickAWindowOfWhichNobodyKnowsWhoseItIs) {
    auto state = someSources();
    state.windows.front().info.windowOwner = WindowOwnerIdentity{50, "org.example.editor"};
    state.picks.followMode = FollowMode::manual;
    const auto areEnabled = [&] {
        const auto content = sourcePickerContent(state);
        const auto& windows = content.sections[1].tiles;
        EXPECT_TRUE(content.sections[0].tiles[0].isEnabled);
        return std::pair(windows[0].isEnabled, windows[1].isEnabled);
    };
    EXPECT_EQ(areEnabled(), std::pair(true, false));
    state.picks.manualSources = {window1};
    EXPECT_EQ(areEnabled(), std::pair(true, true));
}

TEST(SourcePickerContentTest, SaysThatItLoadsWhileThereIsNothingYet) {
    SourcePickerState state;
    state.isLoading = true;
    const auto content = sourcePickerContent(state);
    ASSERT_TRUE(content.emptyState);
    EXPECT_EQ(*content.emptyState,
              (SourcePickerEmptyState{"rectangle.dashed", "ソースを読み込んでいます…"}));
    EXPECT_TRUE(content.sections.empty());
    EXPECT_TRUE(content.isLoading);
}

TEST(SourcePickerContentTest, SaysThatThereIsNothing) {
    const auto content = sourcePickerContent({});
    ASSERT_TRUE(content.emptyState);
    EXPECT_EQ(*content.emptyState,
              (SourcePickerEmptyState{"rectangle.dashed", "利用可能なソースがありません"}));
    EXPECT_TRUE(content.sections.empty());
    EXPECT_FALSE(content.isLoading);
}

TEST(SourcePickerContentTest, ShowsDisplaysBeforeWindowsAsTheyAreListed) {
    const auto state = someSources();
    const auto content = sourcePickerContent(state);
    EXPECT_FALSE(content.emptyState);
    ASSERT_EQ(content.sections.size(), 2U);
    EXPECT_EQ(content.sections[0].title, "ディスプレイ");
    ASSERT_EQ(content.sections[0].tiles.size(), 1U);
    EXPECT_EQ(content.sections[0].tiles[0].preview, state.displays[0]);
    EXPECT_EQ(content.sections[1].title, "アプリケーションウィンドウ");
    ASSERT_EQ(content.sections[1].tiles.size(), 2U);
    EXPECT_EQ(content.sections[1].tiles[0].preview, state.windows[0]);
    EXPECT_EQ(content.sections[1].tiles[1].preview, state.windows[1]);
}

TEST(SourcePickerContentTest, KeepsBothSectionsWhenOneOfThemIsEmpty) {
    auto state = someSources();
    state.windows.clear();
    state.isLoading = true;
    const auto content = sourcePickerContent(state);
    EXPECT_FALSE(content.emptyState);
    ASSERT_EQ(content.sections.size(), 2U);
    EXPECT_TRUE(content.sections[1].tiles.empty());
}

TEST(SourcePickerContentTest, MarksPickedSourcesInTheManualModeOnly) {
    auto state = someSources();
    state.picks.manualSources = {window5, display1};
    for (const auto mode : {FollowMode::manual, FollowMode::mouse, FollowMode::focusedApp}) {
        state.picks.followMode = mode;
        const bool isManual = mode == FollowMode::manual;
        const auto content = sourcePickerContent(state);
        EXPECT_EQ(content.sections[0].tiles[0].isSelected, isManual);
        EXPECT_EQ(content.sections[1].tiles[0].isSelected, isManual);
        EXPECT_FALSE(content.sections[1].tiles[1].isSelected)
            << "a window is not the display of the same number";
        EXPECT_EQ(content.selectionCount, isManual ? "2 件選択中" : "0 件選択中");
    }
}

TEST(SourcePickerContentTest, CountsPicksThatAreNotListedNow) {
    auto state = someSources();
    state.picks.followMode = FollowMode::manual;
    state.picks.manualSources = {CaptureSource::window(99)};
    EXPECT_EQ(sourcePickerContent(state).selectionCount, "1 件選択中");
}

TEST(SourcePickerContentTest, MarksTheShownSourceInEveryMode) {
    auto state = someSources();
    state.activeSource = display1;
    for (const auto mode : {FollowMode::manual, FollowMode::mouse, FollowMode::focusedApp}) {
        state.picks.followMode = mode;
        const auto content = sourcePickerContent(state);
        EXPECT_TRUE(content.sections[0].tiles[0].isLive);
        EXPECT_FALSE(content.sections[1].tiles[0].isLive);
        EXPECT_FALSE(content.sections[1].tiles[1].isLive)
            << "a window is not the display of the same number";
    }
}

TEST(SourcePickerContentTest, ReadsSubtitleAndLiveBadge) {
    SourceTileContent tile{preview(window5, "notes.txt", "Editor")};
    EXPECT_EQ(tile.accessibleDescription(), "Editor");
    tile.isLive = true;
    EXPECT_EQ(tile.accessibleDescription(), "Editor、LIVE");
    tile.preview.info.subtitle.reset();
    EXPECT_EQ(tile.accessibleDescription(), "LIVE");
}

} // namespace
} // namespace kestrove
