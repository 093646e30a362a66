#pragma once

#include "Tests/Support/PixelReader/PixelImage.h"

namespace kestrove::test {

/// What `shown` must be to present `source` in its size: the sides' ratio kept, in the middle, on
/// black. Pixel by pixel where both are of one size; else each pixel may be any mix of the source
/// pixels around its place, and is `shown`'s own where it is one. Whoever scales and however, a
/// pixel from elsewhere differs.
[[nodiscard]] PixelImage presentation(const PixelImage& source, const PixelImage& shown);

/// Nearly black, with some text: what the output says while nothing is shared. The displays of the
/// tests are nowhere black.
[[nodiscard]] bool isPlaceholder(const PixelImage& shown);

} // namespace kestrove::test
