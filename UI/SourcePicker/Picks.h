#pragma once

#include "Core/CaptureSource/CaptureSource.h"
#include "Core/Settings/FollowMode.h"

#include <vector>

namespace kestrove {

/// What the user has picked, as every list of sources to tick shows it.
struct Picks {
    FollowMode followMode = FollowMode::mouse;
    std::vector<CaptureSource> manualSources = {};

    /// Ticked: picked by the user, and picks count in this follow mode. The saved picks of another
    /// mode are not what is shared.
    [[nodiscard]] bool isManuallySelected(CaptureSource source) const;
    /// A window whose owner nobody knows can only lose its tick.
    [[nodiscard]] bool canToggle(const CaptureSourceInfo& info) const;
};

} // namespace kestrove
