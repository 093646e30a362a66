#pragma once

#include "Core/CaptureSource/CaptureSource.h"

#include <vector>

namespace kestrove::SourceLister {

/// What the user may pick.
struct Lists {
    /// In the order in which the platform reports them.
    std::vector<CaptureSourceInfo> displays;
    /// Sorted by application name, then as the platform reports them.
    std::vector<CaptureSourceInfo> windows;

    bool operator==(const Lists&) const = default;
};

/// One reading of the desktop. The two sets ignore the filters of the lists: they tell whether a
/// source that was ever chosen still exists, and whether it can be seen.
struct Snapshot {
    Lists lists;
    CaptureSourceSet existingSources;
    CaptureSourceSet onScreenSources;
};

} // namespace kestrove::SourceLister
