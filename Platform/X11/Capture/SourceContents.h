#pragma once

#include "Desktop/ScreenCapture.h"
#include "Platform/X11/Capture/CaptureServices.h"
#include "Platform/X11/Capture/SourceContent.h"
#include "Platform/X11/Screens/MonitorLayout.h"

#include <expected>
#include <memory>

namespace kestrove::x11 {

/// What a filter shows. Fails when its display or window is not there.
[[nodiscard]] std::expected<std::unique_ptr<SourceContent>, PlatformError>
openSourceContent(Connection& connection, const MonitorLayout& monitors, CaptureServices& services,
                  const ContentFilter& filter);

[[nodiscard]] PlatformError displayGone();
/// The server refused what the source was to be drawn on.
[[nodiscard]] PlatformError noMemory();

} // namespace kestrove::x11
