#include "Platform/X11/Capture/DisplayComposition.h"

#include <algorithm>
#include <ranges>

namespace kestrove::x11 {
namespace {

/// The stack as it is put together.
struct Layers {
    const std::vector<StackedWindow>& bottomToTop;
    const std::set<xcb_window_t>& excluded;
    bool isComposited;
    const PictureFormats& formats;

    [[nodiscard]] bool isBlended(const StackedWindow& window) const {
        const auto format = formats.ofVisual(window.visual);
        return isComposited && (window.opacity < 1 || (format && format->hasAlpha));
    }
};

/// Where an excluded window can be seen, wholly or through what is blended above it.
Region coveredRegion(const Layers& layers) {
    Region covered;
    Region hidden;
    for (const auto& window : layers.bottomToTop | std::views::reverse) {
        if (!window.isVisible())
            continue;
        if (layers.excluded.contains(window.window))
            covered += window.region() - hidden;
        else if (!layers.isBlended(window))
            hidden += window.region();
    }
    return covered;
}

/// `covered` made of all windows but the excluded ones, the rest of the display being `direct`.
DisplayComposition compose(const Layers& layers, const Region& display, Region covered) {
    DisplayComposition result;
    result.direct = display - covered;
    Region remaining = covered;
    result.covered = std::move(covered);
    for (const auto& window : layers.bottomToTop | std::views::reverse) {
        if (remaining.isEmpty())
            break;
        const auto format = layers.formats.ofVisual(window.visual);
        if (!window.isVisible() || !format || layers.excluded.contains(window.window))
            continue;
        auto visible = window.region() & remaining;
        if (visible.isEmpty())
            continue;
        const bool blended = layers.isBlended(window);
        if (!blended)
            remaining -= visible;
        result.windows.push_back({window, *format, std::move(visible), blended});
    }
    std::ranges::reverse(result.windows);
    result.background = std::move(remaining);
    return result;
}

bool hasWindow(const DisplayComposition& composition, xcb_window_t window) {
    return std::ranges::any_of(composition.windows,
                               [window](const auto& each) { return each.window.window == window; });
}

/// Whether no other windows than those of `part` are seen on the display.
bool isMadeOf(const DisplayComposition& display, const DisplayComposition& part) {
    return display.background.isEmpty() &&
           std::ranges::all_of(display.windows, [&part](const auto& each) {
               return hasWindow(part, each.window.window);
           });
}

} // namespace

bool DisplayComposition::isBlended() const {
    return std::ranges::any_of(windows, &ComposedWindow::isBlended);
}

DisplayComposition composeDisplay(const std::vector<StackedWindow>& bottomToTop,
                                  const std::set<xcb_window_t>& excluded, const Region& display,
                                  bool isComposited, const PictureFormats& formats) {
    const Layers layers{bottomToTop, excluded, isComposited, formats};
    auto needed = compose(layers, display, coveredRegion(layers) & display);
    if (isComposited || needed.windows.empty())
        return needed;
    auto whole = compose(layers, display, display);
    return isMadeOf(whole, needed) ? whole : needed;
}

} // namespace kestrove::x11
