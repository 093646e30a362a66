#pragma once

#include "Core/AppController/CaptureSessionState.h"
#include "Core/SourceLister/SourceLists.h"
#include "UI/MenuBarView/MenuContent.h"
#include "UI/SourcePicker/Picks.h"

#include <optional>
#include <string>
#include <vector>

namespace kestrove {

/// How the bound shortcuts are shown, e.g. "⌃⌘S"; absent where none is bound.
struct MenuShortcutTexts {
    std::optional<std::string> startStop = std::nullopt;
    std::optional<std::string> showPicker = std::nullopt;
    std::optional<std::string> showWindow = std::nullopt;
    std::optional<std::string> hideToggle = std::nullopt;
};

/// What there is to open.
struct MenuOffers {
    bool hasPicker = false;
    bool hasSettings = false;
    /// Whether this desktop has a page for the permission to record the screen.
    bool hasScreenRecordingPreferences = false;
};

/// Everything that the menu's content depends on.
struct MenuState {
    CaptureSessionState session = CaptureSessionState::stopped();
    std::optional<std::string> recoveryGuidance = std::nullopt;
    SourceLister::Lists availableSources = {};
    CaptureSourceSet unavailableManualSources = {};
    std::optional<CaptureSource> activeSource = std::nullopt;
    Picks picks = {};
    bool hideOutputWindow = false;
    MenuShortcutTexts shortcuts = {};
    MenuOffers offers = {};

    /// Shown in the output now.
    [[nodiscard]] bool isLive(CaptureSource source) const;
};

[[nodiscard]] MenuContent menuContent(const MenuState& state);

} // namespace kestrove
