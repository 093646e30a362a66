#pragma once

#include "Platform/X11/Capture/PictureFormats.h"
#include "Platform/X11/Capture/Region.h"
#include "Platform/X11/Capture/WindowStack.h"

#include <set>
#include <vector>

namespace kestrove::x11 {

/// A window that is part of what lies beneath the left-out ones.
struct ComposedWindow {
    StackedWindow window;
    PictureFormats::Format format;
    /// Where it contributes. Root coordinates.
    Region visible;
    /// Whether what is below shows through it.
    bool isBlended = false;

    bool operator==(const ComposedWindow& other) const {
        return window == other.window && visible == other.visible && isBlended == other.isBlended;
    }
};

/// From what a display's picture is made when some windows are left out of it. Root coordinates.
struct DisplayComposition {
    /// Taken from the screen as it is.
    Region direct;
    /// Where a left-out window would be seen: made of the windows beneath it.
    Region covered;
    /// Bottom to top.
    std::vector<ComposedWindow> windows;
    /// The part of `covered` where the bare root is seen.
    Region background;

    bool operator==(const DisplayComposition&) const = default;
};

/// A pure function of the stack. `excluded` are children of the root. Where no compositor runs,
/// nothing on the screen is blended, and neither is what is composed here.
[[nodiscard]] DisplayComposition composeDisplay(const std::vector<StackedWindow>& bottomToTop,
                                                const std::set<xcb_window_t>& excluded,
                                                const Region& display, bool isComposited,
                                                const PictureFormats& formats);

} // namespace kestrove::x11
