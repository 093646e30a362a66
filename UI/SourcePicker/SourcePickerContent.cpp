#include "UI/SourcePicker/SourcePickerContent.h"

#include <algorithm>
#include <utility>

#include <fmt/core.h>

namespace kestrove {

namespace {

SourcePickerSection section(const SourcePickerState& state, std::string title,
                            const std::vector<SourcePreview>& previews) {
    SourcePickerSection result{.title = std::move(title), .tiles = {}};
    for (const auto& preview : previews)
        result.tiles.push_back({.preview = preview,
                                .isSelected = state.picks.isManuallySelected(preview.id),
                                .isLive = state.isLive(preview.id),
                                .isEnabled = state.picks.canToggle(preview.info)});
    return result;
}

/// Picks that are not in the lists now, such as minimised windows, count too: they are shared as
/// soon as they can be.
std::size_t selectionCount(const SourcePickerState& state) {
    return state.picks.followMode == FollowMode::manual ? state.picks.manualSources.size() : 0;
}

} // namespace

bool SourcePickerState::isLive(CaptureSource source) const {
    return activeSource == source;
}

std::string SourceTileContent::accessibleDescription() const {
    auto text = preview.info.subtitle.value_or("");
    if (isLive)
        text += text.empty() ? SourcePickerTexts::liveBadge
                             : fmt::format("、{}", SourcePickerTexts::liveBadge);
    return text;
}

int SourcePickerContent::tileCount() const {
    int count = 0;
    for (const auto& section : sections)
        count += static_cast<int>(section.tiles.size());
    return count;
}

int SourcePickerContent::pictureCount() const {
    int count = 0;
    for (const auto& section : sections)
        count += static_cast<int>(std::ranges::count_if(
            section.tiles, [](const auto& tile) { return tile.preview.image != nullptr; }));
    return count;
}

SourcePickerContent sourcePickerContent(const SourcePickerState& state) {
    SourcePickerContent content{
        .title = "ソースを選択",
        .caption = "クリックで選択／解除。複数選んだ場合はアクティブなものが自動表示されます",
        .selectionCount = fmt::format("{} 件選択中", selectionCount(state)),
        .refreshLabel = "更新",
        .refreshSymbol = "arrow.clockwise",
        .isLoading = state.isLoading,
        .emptyState = std::nullopt,
        .sections = {}};
    if (state.displays.empty() && state.windows.empty()) {
        content.emptyState = {.symbol = "rectangle.dashed",
                              .text = state.isLoading ? SourcePickerTexts::loading
                                                      : "利用可能なソースがありません"};
        return content;
    }
    content.sections = {section(state, "ディスプレイ", state.displays),
                        section(state, "アプリケーションウィンドウ", state.windows)};
    return content;
}

} // namespace kestrove
