#include "UI/OutputWindow/ResizeLimits.h"

#include <algorithm>
#include <cmath>

namespace kestrove::ResizeLimits {

Size smallest(Size minimum, Size content) {
    return {std::min(minimum.width, content.width), std::min(minimum.height, content.height)};
}

AspectRatios aspectRatios(Size ratio, Size content) {
    constexpr double wholePixel = 1;
    const bool isRounded =
        std::abs(content.width - content.height * ratio.width / ratio.height) < wholePixel ||
        std::abs(content.height - content.width * ratio.height / ratio.width) < wholePixel;
    if (!isRounded)
        return {ratio, ratio};
    const bool isNarrower = content.width * ratio.height < ratio.width * content.height;
    return isNarrower ? AspectRatios{content, ratio} : AspectRatios{ratio, content};
}

} // namespace kestrove::ResizeLimits
