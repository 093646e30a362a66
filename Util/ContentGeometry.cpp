#include "Util/ContentGeometry.h"

#include <algorithm>
#include <cmath>

namespace kestrove::ContentGeometry {

namespace {

bool isPositive(Size size) {
    return size.width > 0 && size.height > 0;
}

double sharedLength(double minA, double maxA, double minB, double maxB) {
    return std::min(maxA, maxB) - std::max(minA, minB);
}

} // namespace

Size scaledPixelSize(Size point, double scale, Size minimum) {
    if (!isPositive(point) || !(scale > 0))
        return minimum;
    const Size raw{point.width * scale, point.height * scale};
    const double factor = std::max({1.0, minimum.width / raw.width, minimum.height / raw.height});
    return {std::ceil(raw.width * factor), std::ceil(raw.height * factor)};
}

std::optional<Rect> clampedWindowFrame(const Rect& frame, const Rect& bounds) {
    if (!isPositive(frame.size()) || !isPositive(bounds.size()))
        return std::nullopt;
    const double widthFactor = bounds.width / frame.width;
    const double heightFactor = bounds.height / frame.height;
    const double factor = std::min({1.0, widthFactor, heightFactor});
    // The axis that limits takes the length of the bounds itself: the product can miss it by a
    // rounding error, and a window that fills an axis would then not be seen to fill it.
    const double width = factor == widthFactor ? bounds.width : frame.width * factor;
    const double height = factor == heightFactor ? bounds.height : frame.height * factor;
    return Rect{std::min(bounds.maxX() - width, std::max(frame.minX(), bounds.minX())),
                std::min(bounds.maxY() - height, std::max(frame.minY(), bounds.minY())), width,
                height};
}

std::optional<Point> relativePlacement(const Rect& frame, const Rect& bounds) {
    const auto fitted = clampedWindowFrame(frame, bounds);
    if (!fitted)
        return std::nullopt;
    const double freeWidth = bounds.width - fitted->width;
    const double freeHeight = bounds.height - fitted->height;
    return Point{freeWidth > 0 ? (fitted->minX() - bounds.minX()) / freeWidth : 0.5,
                 freeHeight > 0 ? (fitted->minY() - bounds.minY()) / freeHeight : 0.5};
}

std::optional<Rect> positionedWindowFrame(Size size, Point relativePlacement, const Rect& bounds) {
    if (!std::isfinite(relativePlacement.x) || !std::isfinite(relativePlacement.y))
        return std::nullopt;
    const auto fitted = clampedWindowFrame({bounds.x, bounds.y, size.width, size.height}, bounds);
    if (!fitted)
        return std::nullopt;
    const double relativeX = std::clamp(relativePlacement.x, 0.0, 1.0);
    const double relativeY = std::clamp(relativePlacement.y, 0.0, 1.0);
    return Rect{bounds.minX() + relativeX * (bounds.width - fitted->width),
                bounds.minY() + relativeY * (bounds.height - fitted->height), fitted->width,
                fitted->height};
}

std::optional<std::size_t> bestIntersectionIndex(const Rect& rectangle,
                                                 const std::vector<Rect>& rectangles) {
    std::optional<std::size_t> best;
    double bestArea = 0;
    for (std::size_t index = 0; index < rectangles.size(); ++index) {
        const auto& other = rectangles[index];
        const double width =
            sharedLength(rectangle.minX(), rectangle.maxX(), other.minX(), other.maxX());
        const double height =
            sharedLength(rectangle.minY(), rectangle.maxY(), other.minY(), other.maxY());
        if (!isPositive({width, height}) || !(width * height > bestArea))
            continue;
        best = index;
        bestArea = width * height;
    }
    return best;
}

std::optional<Rect> offscreenWindowFrame(Size size, const std::vector<Rect>& screenFrames) {
    if (!isPositive(size) || screenFrames.empty())
        return std::nullopt;
    double lowestX = screenFrames.front().minX();
    double lowestY = screenFrames.front().minY();
    for (const auto& frame : screenFrames) {
        lowestX = std::min(lowestX, frame.minX());
        lowestY = std::min(lowestY, frame.minY());
    }
    return Rect{lowestX - size.width, lowestY - size.height, size.width, size.height};
}

} // namespace kestrove::ContentGeometry
