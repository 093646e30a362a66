#pragma once

#include "Desktop/DisplayLayer.h"
#include "Desktop/Geometry.h"
#include "Platform/Simulated/SimulatedWorld.h"

#include <map>

namespace kestrove {

class SimulatedDesktop;
class SimulatedDisplayLayer;

/// The native views of a simulated desktop, which host display layers. Thread: main.
class SimulatedViews {
public:
    explicit SimulatedViews(SimulatedDesktop& desktop)
        : m_desktop(desktop) {}

    [[nodiscard]] NativeViewHandle makeView();
    /// Takes in a view that something else made (a toolkit, for instance) under its own number.
    void adoptView(NativeViewHandle view);
    /// Ends the process when a layer still lies in the view.
    void destroyView(NativeViewHandle view);

    /// What is seen at a pixel, counted from the top left, of a view of this size in pixels. Black
    /// where no layer shows anything.
    [[nodiscard]] SimulatedColor colorInView(NativeViewHandle view, Size pixels, Point pixel) const;

    // For the display layer.
    void attach(NativeViewHandle view, SimulatedDisplayLayer& layer);
    void detach(NativeViewHandle view);

private:
    SimulatedDesktop& m_desktop;
    std::map<NativeViewHandle, SimulatedDisplayLayer*> m_views;
    NativeViewHandle m_nextView = 500;
};

} // namespace kestrove
