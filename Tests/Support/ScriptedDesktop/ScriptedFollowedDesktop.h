#pragma once

#include "Core/FollowedDesktop.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Tests/Support/ScriptedDesktop/ScriptedPointer.h"
#include "Tests/Support/ScriptedDesktop/ScriptedScreens.h"
#include "Tests/Support/ScriptedDesktop/ScriptedWindowServer.h"
#include "Tests/Support/ScriptedDesktop/ScriptedWorkspace.h"

namespace kestrove {

/// Everything that following asks of a desktop, on one clock and with one log.
struct ScriptedFollowedDesktop {
    static constexpr std::uint32_t allWindows = 0;
    static constexpr std::uint32_t onScreenWindows = 17;

    SimulatedMainLoop loop;
    CallLog calls;
    ScriptedPointer pointer{calls};
    ScriptedScreens screens;
    ScriptedWindowServer windowServer{calls};
    ScriptedWorkspace workspace{calls};

    [[nodiscard]] FollowedDesktop seam() {
        return {loop, pointer, screens, windowServer, workspace};
    }

    void movePointer(Point to) {
        pointer.point = to;
        pointer.globalMoved.emit();
    }

    /// A normal window. `bounds` in window server coordinates.
    [[nodiscard]] static WindowDescription window(WindowID number, ProcessID owner, Rect bounds) {
        WindowDescription description;
        description.windowNumber = number;
        description.ownerProcessID = owner;
        description.layer = 0;
        description.alpha = 1;
        description.bounds = bounds;
        return description;
    }
};

} // namespace kestrove
