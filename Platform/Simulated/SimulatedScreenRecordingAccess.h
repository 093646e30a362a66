#pragma once

#include "Desktop/ScreenRecordingAccess.h"

namespace kestrove {

class SimulatedDesktop;

/// The recording permission of a simulated desktop, with what the user answers when asked.
class SimulatedScreenRecordingAccess final : public ScreenRecordingAccess {
public:
    explicit SimulatedScreenRecordingAccess(SimulatedDesktop& desktop)
        : m_desktop(desktop) {}

    bool preflight() override;
    bool request() override;
    void openPreferences() override;

    /// Whether a request gives the permission.
    void setUserGrants(bool grants) { m_userGrants = grants; }

    [[nodiscard]] int preflightCount() const { return m_preflightCount; }
    [[nodiscard]] int requestCount() const { return m_requestCount; }
    [[nodiscard]] int openPreferencesCount() const { return m_openPreferencesCount; }

private:
    SimulatedDesktop& m_desktop;
    bool m_userGrants = false;
    int m_preflightCount = 0;
    int m_requestCount = 0;
    int m_openPreferencesCount = 0;
};

} // namespace kestrove
