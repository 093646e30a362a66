#include "Platform/X11/Capture/DisplayComposition.h"

#include <algorithm>
#include <ranges>

namespace kestrove::x11 {
namespace {

/// Where an excluded window can be seen, wholly or through what is blended above it.
Region coveredRegion(const std::vector<StackedWindow>& bottomToTop,
                     const std::set<xcb_window_t>& excluded, const auto& isBlended) {
    Region covered;
    Region hidden;
    for (const auto& window : bottomToTop | std::views::reverse) {
        if (!window.isVisible())
            continue;
        if (excluded.contains(window.window))
            covered += window.region() - hidden;
        else if (!isBlended(window))
            hidden += window.region();
    }
    return covered;
}

} // namespace

DisplayComposition composeDisplay(const std::vector<StackedWindow>& bottomToTop,
                                  const std::set<xcb_window_t>& excluded, const Region& display,
                                  bool isComposited, const PictureFormats& formats) {
    const auto isBlended = [&](const StackedWindow& window) {
        const auto format = formats.ofVisual(window.visual);
        return isComposited && (window.opacity < 1 || (format && format->hasAlpha));
    };
    DisplayComposition result;
    result.covered = coveredRegion(bottomToTop, excluded, isBlended) & display;
    result.direct = display - result.covered;

    Region remaining = result.covered;
    for (const auto& window : bottomToTop | std::views::reverse) {
        if (remaining.isEmpty())
            break;
        const auto format = formats.ofVisual(window.visual);
        if (!window.isVisible() || !format || excluded.contains(window.window))
            continue;
        auto visible = window.region() & remaining;
        if (visible.isEmpty())
            continue;
        const bool blended = isBlended(window);
        if (!blended)
            remaining -= visible;
        result.windows.push_back({window, *format, std::move(visible), blended});
    }
    std::ranges::reverse(result.windows);
    result.background = std::move(remaining);
    return result;
}

} // namespace kestrove::x11
