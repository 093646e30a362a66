#include "Core/AppController/CaptureRecoveryPolicy.h"

#include <algorithm>

namespace kestrove {

std::optional<CaptureSource>
CaptureRecoveryPolicy::nextSource(CaptureSource after, const std::vector<CaptureSource>& candidates,
                                  const CaptureSourceSet& availableSources) {
    const auto next = std::ranges::find_if(candidates, [&](const CaptureSource& candidate) {
        return candidate != after && availableSources.contains(candidate);
    });
    return next == candidates.end() ? std::nullopt : std::optional(*next);
}

} // namespace kestrove
