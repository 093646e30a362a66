#pragma once

#include "Core/GlobalShortcuts/GlobalShortcuts.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrove {

/// What the registry has published, at one moment.
struct ShortcutRegistryState {
    ShortcutActions registeredActions;
    ShortcutFailures operationFailures;
    ShortcutActions duplicateActions;
    StartupRecoveryState startupRecoveryState = StartupRecoveryState::ready;

    [[nodiscard]] static ShortcutRegistryState of(const GlobalShortcuts& shortcuts);
};

enum class StatusColor : std::uint8_t { orange, green, secondary };

/// Names of symbols.
namespace StatusSymbol {
inline constexpr std::string_view warning = "exclamationmark.triangle.fill";
inline constexpr std::string_view done = "checkmark.circle.fill";
inline constexpr std::string_view none = "circle";
} // namespace StatusSymbol

/// A line with a symbol before it. UTF-8; the texts live for ever.
struct StatusLine {
    std::string_view text;
    std::string_view symbol;
    StatusColor color = StatusColor::secondary;

    bool operator==(const StatusLine&) const = default;
};

/// The registration of all shortcuts together: a line, and what stands under it.
struct RegistrationStatus {
    StatusLine line;
    std::optional<std::string_view> failureSummary;
    std::optional<std::string_view> startupNote;

    bool operator==(const RegistrationStatus&) const = default;
};

/// Whether one action's shortcut is in force and, if not, why.
[[nodiscard]] StatusLine shortcutStatus(ShortcutAction action, const ShortcutRegistryState& state);

[[nodiscard]] RegistrationStatus shortcutRegistrationStatus(const ShortcutRegistryState& state);

} // namespace kestrove
