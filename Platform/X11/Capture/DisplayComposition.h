#pragma once

#include "Platform/X11/Capture/PictureFormats.h"
#include "Platform/X11/Capture/Region.h"
#include "Platform/X11/Capture/WindowStack.h"

#include <set>
#include <vector>

namespace kestrove::x11 {

/// A window that is part of what a display is made of.
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
    /// Made of windows: where a left-out one would be seen, or all of the display.
    Region covered;
    /// Bottom to top.
    std::vector<ComposedWindow> windows;
    /// The part of `covered` where the bare root is seen.
    Region background;

    /// Whether something in `covered` is painted more than once.
    [[nodiscard]] bool isBlended() const;

    bool operator==(const DisplayComposition&) const = default;
};

/// A pure function of the stack. `excluded` are children of the root. Where no compositor runs,
/// nothing on the screen is blended, and neither is what is composed here.
///
/// The server keeps windows apart that lie beneath left-out ones. Where no others are seen on the
/// display, as with a window that fills it, all of it is made of these: then the screen is not read
/// at all, and what changes there, our own drawing among it, need not be told. Only where no
/// compositor runs, whose effects would be missing.
[[nodiscard]] DisplayComposition composeDisplay(const std::vector<StackedWindow>& bottomToTop,
                                                const std::set<xcb_window_t>& excluded,
                                                const Region& display, bool isComposited,
                                                const PictureFormats& formats);

} // namespace kestrove::x11
