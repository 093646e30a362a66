#include "UI/SourcePicker/Picks.h"

#include <algorithm>

namespace kestrove {

bool Picks::isManuallySelected(CaptureSource source) const {
    return followMode == FollowMode::manual &&
           std::ranges::find(manualSources, source) != manualSources.end();
}

bool Picks::canToggle(const CaptureSourceInfo& info) const {
    return info.source.isDisplay() || info.windowOwner ||
           std::ranges::find(manualSources, info.source) != manualSources.end();
}

} // namespace kestrove
