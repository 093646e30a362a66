#pragma once

#include "Platform/Simulated/SimulatedApplication.h"
#include "Platform/Simulated/SimulatedDesktop.h"
#include "Platform/Simulated/SimulatedDisplayLayer.h"
#include "Platform/Simulated/SimulatedHotKeys.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Platform/Simulated/SimulatedPointer.h"
#include "Platform/Simulated/SimulatedScreenCapture.h"
#include "Platform/Simulated/SimulatedScreenRecordingAccess.h"
#include "Platform/Simulated/SimulatedScreens.h"
#include "Platform/Simulated/SimulatedSystemLog.h"
#include "Platform/Simulated/SimulatedUserDefaults.h"
#include "Platform/Simulated/SimulatedWindowServer.h"
#include "Platform/Simulated/SimulatedWorkspace.h"

namespace kestrove {

/// A loop, a desktop and every adapter over it, in the order in which they have to go.
///
///     SimulatedPlatform platform;
///     platform.desktop.addDisplay({.displayID = 1, .frame = {0, 0, 1440, 900}});
///     platform.desktop.capture().startCapture.next(SimulatedOutcome::held());
///     ...
///     platform.loop.advance(Seconds(0.15));
///     EXPECT_TRUE(platform.displayLayer.visible());
class SimulatedPlatform {
public:
    SimulatedMainLoop loop;
    SimulatedDesktop desktop{loop};
    SimulatedScreenCapture screenCapture{desktop};
    SimulatedDisplayLayer displayLayer{desktop};
    SimulatedWindowServer windowServer{desktop};
    SimulatedWorkspace workspace{desktop};
    SimulatedScreens screens{desktop};
    SimulatedPointer pointer{desktop};
    SimulatedHotKeys hotKeys{desktop};
    SimulatedUserDefaults userDefaults{desktop};
    SimulatedApplication application{desktop};
    SimulatedScreenRecordingAccess screenRecordingAccess{desktop};
    SimulatedSystemLog systemLog;
};

} // namespace kestrove
