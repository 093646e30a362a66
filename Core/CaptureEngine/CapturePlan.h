#pragma once

#include "Core/CaptureError.h"
#include "Core/CaptureSource/CaptureSource.h"
#include "Core/Collaborators/CaptureControlling.h"
#include "Desktop/ScreenCapture.h"
#include "Desktop/Screens.h"

#include <expected>
#include <variant>
#include <vector>

namespace kestrove {

struct DisplayPlan {
    DisplayPlan(CapturableDisplay found, std::vector<WindowID> leftOut)
        : display(found)
        , excludedWindows(std::move(leftOut)) {}
    CapturableDisplay display;
    std::vector<WindowID> excludedWindows;
};

struct WindowPlan {
    explicit WindowPlan(CapturableWindow found)
        : window(std::move(found)) {}
    CapturableWindow window;
};

/// What a source was found to be in the shareable content: a display with the windows to leave out,
/// or one window.
using CaptureContentFilterPlan = std::variant<DisplayPlan, WindowPlan>;

/// Fails when the source is not in the content.
///
/// The windows left out keep the content's order; after them come those that the content misses. A
/// window manager takes its time until it lists a window of ours, and one that was not left out
/// from the start would show itself without end.
[[nodiscard]] std::expected<CaptureContentFilterPlan, EngineError>
planCapture(const CaptureSource& source, const ShareableContent& content,
            const WindowIDSet& excludedWindowIDs);

[[nodiscard]] ContentFilter contentFilter(const CaptureContentFilterPlan& plan);

/// Whole pixels. A display is captured as it is; a small window is enlarged, keeping its aspect
/// ratio, until neither side is below 480 by 270: meeting programs make smaller pictures
/// unreadable.
[[nodiscard]] Size pixelSize(const CaptureContentFilterPlan& plan,
                             const std::vector<Screen>& screens);

} // namespace kestrove
