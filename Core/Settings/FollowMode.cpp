#include "Core/Settings/FollowMode.h"

#include <algorithm>
#include <utility>

namespace kestrove {

std::string_view rawValue(FollowMode mode) {
    switch (mode) {
    case FollowMode::mouse:
        return "mouse";
    case FollowMode::focusedApp:
        return "focusedApp";
    case FollowMode::manual:
        return "manual";
    }
    std::unreachable();
}

std::optional<FollowMode> followModeFromRawValue(std::string_view text) {
    const auto* const found = std::ranges::find(allFollowModes, text, rawValue);
    return found == allFollowModes.end() ? std::nullopt : std::optional(*found);
}

} // namespace kestrove
