#pragma once

#include "Desktop/WindowServer.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"

#include <map>

namespace kestrove {

/// The window lists that a test gives, one for each set of options. Without one for the options,
/// that list cannot be read.
class ScriptedWindowServer final : public WindowServer {
public:
    explicit ScriptedWindowServer(CallLog& calls)
        : m_calls(calls) {}

    std::optional<std::vector<WindowDescription>> windowList(WindowListOptions options) override {
        const auto bits = static_cast<std::uint32_t>(options);
        m_calls.add("window list " + std::to_string(bits));
        const auto found = lists.find(bits);
        return found == lists.end() ? std::nullopt : std::optional(found->second);
    }

    /// By the options' bits: 0 all, 16 without the desktop's elements, 17 also on screen only.
    std::map<std::uint32_t, std::vector<WindowDescription>> lists;

private:
    CallLog& m_calls;
};

} // namespace kestrove
