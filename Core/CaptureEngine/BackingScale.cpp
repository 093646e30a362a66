#include "Core/CaptureEngine/BackingScale.h"

#include "Util/ScreenGeometry.h"

#include <algorithm>

namespace kestrove {

namespace {

/// Too many pixels cost time, too few blur the text: without a screen to ask, assume a fine one.
constexpr double unknownScale = 2.0;

} // namespace

double backingScaleForDisplay(DisplayID display, const std::vector<Screen>& screens) {
    const auto shown = std::ranges::find_if(screens, [display](const Screen& screen) {
        return ScreenGeometry::displayID(screen) == display;
    });
    if (shown != screens.end())
        return shown->backingScaleFactor;
    const auto main = ScreenGeometry::mainScreen(screens);
    return main ? main->backingScaleFactor : unknownScale;
}

double backingScaleForWindowAt(const Rect& frame, const std::vector<Screen>& screens) {
    const auto at = ScreenGeometry::screen(frame.center(), screens);
    return at ? at->backingScaleFactor : unknownScale;
}

} // namespace kestrove
