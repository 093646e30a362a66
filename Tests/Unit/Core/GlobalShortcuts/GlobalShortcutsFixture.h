#pragma once

#include "Core/GlobalShortcuts/GlobalShortcuts.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"
#include "Tests/Support/ScriptedDesktop/ScriptedHotKeyRegistrar.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace kestrove {

inline constexpr std::uint32_t controlCommand = 0x1100;
inline const ShortcutActions everyAction(allShortcutActions.begin(), allShortcutActions.end());

/// A registry over a keyboard in memory. Its handlers keep the name of the action they ran for.
struct ShortcutsBench {
    ShortcutHandlers handlers(const std::string& suffix = "") {
        ShortcutHandlers made;
        for (const auto action : allShortcutActions) {
            made.emplace(action, [this, name = std::string(rawValue(action)) + suffix] {
                ran.push_back(name);
            });
        }
        return made;
    }
    bool install(const ShortcutBindings& bindings) {
        return shortcuts.install(handlers(), bindings);
    }
    /// The defaults, installed, with an empty log of calls.
    void installDefaults() {
        ASSERT_TRUE(install(defaultShortcutBindings()));
        keyboard.calls.clear();
    }
    /// Fails the next call of each of these, counted from now, 0 the first.
    void fail(const std::map<int, HotKeyStatus>& statuses) {
        keyboard.statusOf = [statuses, from = keyboard.callCount](int number, auto) {
            const auto found = statuses.find(number - from);
            return found == statuses.end() ? 0 : found->second;
        };
    }
    [[nodiscard]] std::vector<std::string> logLines() const {
        std::vector<std::string> lines;
        lines.reserve(log.lines.size());
        for (const auto& line : log.lines)
            lines.push_back(line.text);
        return lines;
    }

    ScriptedKeyboard keyboard;
    RecordingLog log;
    std::vector<std::string> ran;
    GlobalShortcuts shortcuts{std::make_unique<ScriptedHotKeyRegistrar>(keyboard), log,
                              "dev.kestrove"};
};

} // namespace kestrove
