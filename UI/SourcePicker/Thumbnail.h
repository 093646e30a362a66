#pragma once

#include "Core/CaptureSource/CaptureSource.h"
#include "Core/Collaborators/CaptureControlling.h"
#include "Desktop/ScreenCapture.h"

#include <optional>

namespace kestrove {

/// What to ask the capture service for, to get the thumbnail of a source.
struct ThumbnailRequest {
    ContentFilter filter;
    StreamConfiguration configuration;
};

/// A thumbnail is 480 pixels wide and as high as the source's proportions make it, rounded down (a
/// source without a width counts as one point wide), and shows no cursor. A window is taken by
/// itself, a display without those of its windows that are in `excluded`. Absent when the source is
/// not in `content`. Thread: any.
[[nodiscard]] std::optional<ThumbnailRequest> thumbnailRequest(CaptureSource source,
                                                               const ShareableContent& content,
                                                               const WindowIDSet& excluded);

} // namespace kestrove
