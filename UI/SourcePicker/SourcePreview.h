#pragma once

#include "Core/CaptureSource/CaptureSource.h"
#include "Desktop/ScreenCapture.h"

#include <memory>

namespace kestrove {

/// A source that the user can pick, with a picture of what it shows.
struct SourcePreview {
    /// Also which tile it is.
    CaptureSource id;
    CaptureSourceInfo info;
    /// Null until it was captured. Shared, since lists of previews are copied at each announcement.
    std::shared_ptr<const StillImage> image = nullptr;

    bool operator==(const SourcePreview&) const = default;
};

} // namespace kestrove
