#pragma once

#include "Async/MainLoop.h"
#include "Desktop/Pointer.h"
#include "Desktop/Screens.h"
#include "Desktop/WindowServer.h"
#include "Desktop/Workspace.h"

namespace kestrove {

/// What following the pointer and the focus asks of the desktop. Everything in it outlives whoever
/// it is given to.
struct FollowedDesktop {
    MainLoop& mainLoop;
    Pointer& pointer;
    Screens& screens;
    WindowServer& windowServer;
    Workspace& workspace;
};

} // namespace kestrove
