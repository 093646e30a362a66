#include "UI/ActiveSourceOverlay/ActiveSourceOverlayVisibility.h"

#include <algorithm>
#include <utility>

namespace kestrove::ActiveSourceOverlayVisibility {
namespace {

constexpr int normalLayer = 0;

bool hasExtent(const Rect& rect) {
    return rect.width > 0 && rect.height > 0;
}

bool canBeMarked(const OverlayWindowSnapshot& window, ProcessID currentProcess) {
    return window.ownerProcessID != currentProcess && window.layer == normalLayer &&
           window.alpha > 0 && hasExtent(window.bounds);
}

bool hidesWhatIsBehind(const OverlayWindowSnapshot& window, ProcessID currentProcess) {
    return window.ownerProcessID != currentProcess && window.layer == normalLayer &&
           window.alpha >= 1 && hasExtent(window.bounds);
}

} // namespace

std::vector<Rect> remainingRegions(const Rect& rectangle, const Rect& excluded) {
    const double left = std::max(rectangle.minX(), excluded.minX());
    const double right = std::min(rectangle.maxX(), excluded.maxX());
    const double below = std::max(rectangle.minY(), excluded.minY());
    const double above = std::min(rectangle.maxY(), excluded.maxY());
    if (left >= right || below >= above)
        return {rectangle};
    std::vector<Rect> regions;
    const auto add = [&regions](double minX, double minY, double maxX, double maxY) {
        if (maxX > minX && maxY > minY)
            regions.push_back({minX, minY, maxX - minX, maxY - minY});
    };
    add(rectangle.minX(), rectangle.minY(), rectangle.maxX(), below);
    add(rectangle.minX(), above, rectangle.maxX(), rectangle.maxY());
    add(rectangle.minX(), below, left, above);
    add(right, below, rectangle.maxX(), above);
    return regions;
}

std::optional<OverlayWindowSnapshot> visibleTarget(WindowID windowID, ProcessID currentProcess,
                                                   std::span<const OverlayWindowSnapshot> windows) {
    const auto target = std::ranges::find(windows, windowID, &OverlayWindowSnapshot::windowID);
    if (target == windows.end() || !canBeMarked(*target, currentProcess))
        return std::nullopt;
    std::vector<Rect> remaining{target->bounds};
    for (auto window = windows.begin(); window != target; ++window) {
        if (!hidesWhatIsBehind(*window, currentProcess))
            continue;
        std::vector<Rect> next;
        for (const auto& region : remaining) {
            const auto parts = remainingRegions(region, window->bounds);
            next.insert(next.end(), parts.begin(), parts.end());
        }
        remaining = std::move(next);
        if (remaining.empty())
            return std::nullopt;
    }
    return *target;
}

} // namespace kestrove::ActiveSourceOverlayVisibility
