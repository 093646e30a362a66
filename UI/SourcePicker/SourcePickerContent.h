#pragma once

#include "UI/SourcePicker/Picks.h"
#include "UI/SourcePicker/SourcePreview.h"

#include <optional>
#include <string>
#include <vector>

namespace kestrove {

/// Everything that the picker's content depends on.
struct SourcePickerState {
    std::vector<SourcePreview> displays = {};
    std::vector<SourcePreview> windows = {};
    bool isLoading = false;
    Picks picks = {};
    std::optional<CaptureSource> activeSource = std::nullopt;

    /// Shown in the output now.
    [[nodiscard]] bool isLive(CaptureSource source) const;
};

struct SourceTileContent {
    SourcePreview preview;
    bool isSelected = false;
    bool isLive = false;
    /// Whether a click would do something.
    bool isEnabled = true;

    /// What a screen reader says after the title: the subtitle, and whether the source is live.
    [[nodiscard]] std::string accessibleDescription() const;

    bool operator==(const SourceTileContent&) const = default;
};

struct SourcePickerSection {
    std::string title;
    std::vector<SourceTileContent> tiles;

    bool operator==(const SourcePickerSection&) const = default;
};

struct SourcePickerEmptyState {
    std::string symbol;
    std::string text;

    bool operator==(const SourcePickerEmptyState&) const = default;
};

/// The whole picker, from top to bottom, as values.
struct SourcePickerContent {
    std::string title;
    std::string caption;
    std::string selectionCount;
    std::string refreshLabel;
    std::string refreshSymbol;
    /// Thumbnails are still to come.
    bool isLoading = false;
    /// Stands where the sections would be.
    std::optional<SourcePickerEmptyState> emptyState;
    std::vector<SourcePickerSection> sections;

    /// All tiles, and those of them that have a picture.
    [[nodiscard]] int tileCount() const;
    [[nodiscard]] int pictureCount() const;

    bool operator==(const SourcePickerContent&) const = default;
};

namespace SourcePickerTexts {

inline constexpr const char* windowTitle = "kestrove — ソース選択";
inline constexpr const char* liveBadge = "LIVE";
inline constexpr const char* loading = "ソースを読み込んでいます…";

} // namespace SourcePickerTexts

[[nodiscard]] SourcePickerContent sourcePickerContent(const SourcePickerState& state);

} // namespace kestrove
