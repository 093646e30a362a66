#include "Platform/Simulated/SimulatedScreens.h"

#include "Platform/Simulated/SimulatedDesktop.h"

#include <utility>

namespace kestrove {

SimulatedScreens::SimulatedScreens(SimulatedDesktop& desktop)
    : m_desktop(desktop)
    , m_changed(desktop.loop())
    , m_worldChanges(desktop.events().screensChanged.subscribe([this] { m_changed.raise(); })) {}

std::vector<Screen> SimulatedScreens::screens() {
    m_desktop.requireMainThread("screens");
    std::vector<Screen> screens;
    for (const auto& display : m_desktop.displays()) {
        Screen screen;
        screen.frame = display.frame;
        screen.visibleFrame = display.visibleFrame.value_or(display.frame);
        if (display.hasScreenNumber)
            screen.displayID = display.displayID;
        screen.localizedName = display.name;
        screen.backingScaleFactor = display.scale;
        screen.isMain = screens.empty();
        screens.push_back(std::move(screen));
    }
    return screens;
}

Subscription SimulatedScreens::onChanged(std::function<void()> callback) {
    m_desktop.requireMainThread("Screens::onChanged");
    return m_changed.subscribe(std::move(callback));
}

} // namespace kestrove
