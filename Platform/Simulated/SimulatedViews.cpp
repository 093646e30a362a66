#include "Platform/Simulated/SimulatedViews.h"

#include "Platform/Simulated/Misuse.h"
#include "Platform/Simulated/SimulatedDesktop.h"
#include "Platform/Simulated/SimulatedDisplayLayer.h"

#include <algorithm>
#include <cmath>

namespace kestrove {

NativeViewHandle SimulatedViews::makeView() {
    const auto view = m_nextView++;
    adoptView(view);
    return view;
}

void SimulatedViews::adoptView(NativeViewHandle view) {
    m_desktop.requireMainThread("making a view");
    if (view == 0 || !m_views.emplace(view, nullptr).second)
        abortOnMisuse("two views of one number");
}

void SimulatedViews::destroyView(NativeViewHandle view) {
    m_desktop.requireMainThread("destroying a view");
    const auto found = m_views.find(view);
    if (found == m_views.end())
        abortOnMisuse("destroying a view that does not exist");
    if (found->second)
        abortOnMisuse("a view destroyed with its display layer in it");
    m_views.erase(found);
}

SimulatedColor SimulatedViews::colorInView(NativeViewHandle view, Size pixels, Point pixel) const {
    const auto found = m_views.find(view);
    if (found == m_views.end())
        abortOnMisuse("looking at a view that does not exist");
    const auto frame = found->second ? found->second->visible() : nullptr;
    if (!frame)
        return {};
    const Size size{static_cast<double>(frame->configuration.width),
                    static_cast<double>(frame->configuration.height)};
    const auto scale = std::min(pixels.width / size.width, pixels.height / size.height);
    const Point inFrame{(pixel.x + 0.5 - (pixels.width - size.width * scale) / 2) / scale,
                        (pixel.y + 0.5 - (pixels.height - size.height * scale) / 2) / scale};
    if (!Rect{0, 0, size.width, size.height}.contains(inFrame))
        return {};
    return frame->colorAt({std::floor(inFrame.x), std::floor(inFrame.y)});
}

void SimulatedViews::attach(NativeViewHandle view, SimulatedDisplayLayer& layer) {
    const auto found = m_views.find(view);
    if (found == m_views.end())
        abortOnMisuse("a display layer in a view that does not exist");
    if (found->second)
        abortOnMisuse("two display layers in one view");
    found->second = &layer;
}

void SimulatedViews::detach(NativeViewHandle view) {
    m_views.at(view) = nullptr;
}

} // namespace kestrove
