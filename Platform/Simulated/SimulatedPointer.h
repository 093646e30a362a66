#pragma once

#include "Desktop/Pointer.h"
#include "Platform/Simulated/MergedNotice.h"

namespace kestrove {

class SimulatedDesktop;

/// The pointer of a simulated desktop.
class SimulatedPointer final : public Pointer {
public:
    explicit SimulatedPointer(SimulatedDesktop& desktop);

    Point location() override;
    Subscription addGlobalMovedMonitor(std::function<void()> moved) override;
    Subscription addLocalMovedMonitor(std::function<void()> moved) override;

private:
    void pointerMoved();

    SimulatedDesktop& m_desktop;
    MergedNotice m_movedOverOthers;
    MergedNotice m_movedOverOurs;
    Subscription m_worldChanges;
};

} // namespace kestrove
