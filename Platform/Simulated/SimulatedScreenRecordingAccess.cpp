#include "Platform/Simulated/SimulatedScreenRecordingAccess.h"

#include "Platform/Simulated/SimulatedDesktop.h"

namespace kestrove {

bool SimulatedScreenRecordingAccess::preflight() {
    m_desktop.requireMainThread("preflight");
    ++m_preflightCount;
    return m_desktop.isRecordingAllowed();
}

bool SimulatedScreenRecordingAccess::request() {
    m_desktop.requireMainThread("request");
    ++m_requestCount;
    if (m_userGrants && !m_desktop.isRecordingAllowed())
        m_desktop.setRecordingAllowed(true);
    return m_desktop.isRecordingAllowed();
}

void SimulatedScreenRecordingAccess::openPreferences() {
    m_desktop.requireMainThread("openPreferences");
    ++m_openPreferencesCount;
}

} // namespace kestrove
