#pragma once

#include "Desktop/DisplayLayer.h"
#include "Desktop/Geometry.h"
#include "UI/OutputWindow/OutputWindow.h"
#include "UI/OutputWindow/ResizeLimits.h"

#include <functional>

namespace kestrove {

/// What the output window asks of the window manager beyond what Qt can ask. Each may be empty
/// where a desktop knows no such thing. Main thread; the window exists.
struct NativeWindowRequests {
    /// Between which proportions user resizing keeps the content's sides. Qt rewrites the hints of
    /// a window without it whenever it sets its geometry or its smallest size, so that this follows
    /// each of those.
    std::function<void(NativeViewHandle window, const ResizeLimits::AspectRatios& ratios)>
        setContentAspectRatios;
    /// On every workspace; again after every time the window was shown.
    std::function<void(NativeViewHandle window)> joinAllWorkspaces;
    /// Among the windows that the desktop lists for the user; again after every time the window was
    /// shown: parked, it may have been taken for one that is not to be listed.
    std::function<void(NativeViewHandle window)> joinLists;
    /// Above all normal windows, or among them; again after every time the window was shown. Qt's
    /// own wish for it would have the window made anew at the next time that it is shown, and its
    /// number with it.
    std::function<void(NativeViewHandle window, WindowLevel level)> setLevel;
    /// In front and with the focus, even while another application is active.
    std::function<void(NativeViewHandle window)> activate;
    /// The window's content exists by itself from now on: also what is covered, or outside the
    /// screens, can be captured. Once.
    std::function<void(NativeViewHandle window)> keepContent;
    /// The window, which is shown and which Qt keeps from the window manager, stays at this place
    /// outside every screen and of this size, in toolkit pixels, and capturable, until `unpark`.
    std::function<void(NativeViewHandle window, const Rect& place)> park;
    std::function<void(NativeViewHandle window)> unpark;
};

} // namespace kestrove
