#pragma once

#include "Desktop/Screens.h"
#include "Platform/Simulated/MergedNotice.h"

namespace kestrove {

class SimulatedDesktop;

/// The displays of a simulated desktop as screens.
class SimulatedScreens final : public Screens {
public:
    explicit SimulatedScreens(SimulatedDesktop& desktop);

    std::vector<Screen> screens() override;
    Subscription onChanged(std::function<void()> callback) override;

private:
    SimulatedDesktop& m_desktop;
    MergedNotice m_changed;
    Subscription m_worldChanges;
};

} // namespace kestrove
