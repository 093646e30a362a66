#pragma once

#include "Core/CaptureSource/CaptureSource.h"
#include "Core/Settings/FollowMode.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrove {

/// What an entry of the menu does, but for those that carry a value of their own.
enum class MenuCommand : std::uint8_t {
    start,
    stop,
    openScreenRecordingPreferences,
    showSourcePicker,
    refreshSources,
    /// Takes the output window out of the hidden mode and shows it.
    leaveHiddenMode,
    showOutputWindow,
    hideOutputWindow,
    openSettings,
    openPrivacyPolicy,
    quit,
};

/// An entry that the user can click.
struct MenuButton {
    MenuCommand command;
    std::string title;
    /// How the shortcut that does the same is shown; absent when none is bound.
    std::optional<std::string> shortcut = std::nullopt;
    /// The name of a symbol; absent for most.
    std::optional<std::string> symbol = std::nullopt;
    /// Shown while the pointer rests on it, and read to those who cannot see it.
    std::optional<std::string> help = std::nullopt;
    /// Keys that do the same while one of our windows has the keyboard, as shortcuts are shown;
    /// absent for most.
    std::optional<std::string> keyEquivalent = std::nullopt;
    /// An entry that would do nothing now says so.
    bool isEnabled = true;

    /// The title, and the shortcut two spaces after it.
    [[nodiscard]] std::string label() const;

    bool operator==(const MenuButton&) const = default;
};

struct MenuHeader {
    std::string productName;
    std::string statusMessage;

    bool operator==(const MenuHeader&) const = default;
};

/// What went wrong and what the user can do. One element to those who cannot see it: the symbol,
/// the guidance and the two buttons belong together.
struct MenuRecoverySection {
    std::string symbol;
    std::string guidance;
    MenuButton retry;
    MenuButton openPreferences;

    bool operator==(const MenuRecoverySection&) const = default;
};

struct MenuFollowModeRow {
    FollowMode mode;
    std::string title;
    std::string symbol;
    bool isCurrent = false;

    bool operator==(const MenuFollowModeRow&) const = default;
};

/// A source that the user can tick.
struct MenuSourceRow {
    CaptureSource source;
    std::optional<WindowOwnerIdentity> windowOwner;
    std::string title;
    std::optional<std::string> subtitle;
    std::string symbol;
    bool isSelected = false;
    /// Its frames are in the output now.
    bool isLive = false;
    /// Whether a click would do something: a window of which nobody can say whose it is cannot be
    /// ticked, since it could not be told from a later one with its number.
    bool isEnabled = true;

    bool operator==(const MenuSourceRow&) const = default;
};

struct MenuSourceGroup {
    std::string header;
    std::vector<MenuSourceRow> rows;
    /// Stands where the rows would be; absent while there are some.
    std::optional<std::string> emptyText;

    bool operator==(const MenuSourceGroup&) const = default;
};

struct MenuSourcesSection {
    std::string title;
    std::optional<std::string> note;
    std::vector<MenuFollowModeRow> followModes;
    MenuSourceGroup displays;
    MenuSourceGroup windows;
    MenuButton refresh;

    bool operator==(const MenuSourcesSection&) const = default;
};

/// The whole menu, from top to bottom, as values: what every drawing of it shows.
struct MenuContent {
    MenuHeader header;
    std::optional<MenuRecoverySection> recovery;
    /// A divider stands before it.
    MenuButton session;
    /// Absent while the application has no picker.
    std::optional<MenuButton> picker;
    MenuSourcesSection sources;
    std::vector<MenuButton> outputWindow;
    /// Absent while the application has no settings window.
    std::optional<MenuButton> settings;
    MenuButton privacyPolicy;
    MenuButton quit;

    bool operator==(const MenuContent&) const = default;
};

} // namespace kestrove
