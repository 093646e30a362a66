#include "Platform/Simulated/SimulatedViews.h"

#include "Platform/Simulated/Misuse.h"
#include "Platform/Simulated/SimulatedDesktop.h"

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
