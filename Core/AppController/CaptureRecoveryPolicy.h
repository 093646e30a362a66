#pragma once

#include "Core/CaptureSource/CaptureSource.h"

#include <optional>
#include <vector>

namespace kestrove {

/// Chooses what to show in place of a source that failed.
struct CaptureRecoveryPolicy {
    /// The first of `candidates` that is available and is not the failed source `after`. The order
    /// of the candidates is the only tie-break.
    [[nodiscard]] static std::optional<CaptureSource>
    nextSource(CaptureSource after, const std::vector<CaptureSource>& candidates,
               const CaptureSourceSet& availableSources);
};

} // namespace kestrove
