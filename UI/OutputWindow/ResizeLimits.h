#pragma once

#include "Desktop/Geometry.h"

namespace kestrove {

/// What a window manager is asked to keep a window's content to while the user resizes it. Many
/// hold the program to it too, so that nothing here may forbid a size that the program itself has
/// chosen: it would become another one, and every call would see that.
///
/// Pixels of the content. Pure functions.
namespace ResizeLimits {

/// From the narrowest shape to the widest, of which only the proportions count.
struct AspectRatios {
    Size narrowest;
    Size widest;

    bool operator==(const AspectRatios&) const = default;
};

/// The smallest content that the user may choose, where the program has chosen `content`.
[[nodiscard]] Size smallest(Size minimum, Size content);

/// `ratio`, and that of `content` where it is the same but for rounding to whole pixels.
[[nodiscard]] AspectRatios aspectRatios(Size ratio, Size content);

} // namespace ResizeLimits
} // namespace kestrove
