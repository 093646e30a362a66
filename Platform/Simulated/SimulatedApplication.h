#pragma once

#include "Desktop/Application.h"
#include "Platform/Simulated/MergedNotice.h"

#include <vector>

namespace kestrove {

class SimulatedDesktop;

/// This program on a simulated desktop.
class SimulatedApplication final : public Application {
public:
    explicit SimulatedApplication(SimulatedDesktop& desktop);

    bool isActive() const override;
    ActivationPolicy activationPolicy() const override;
    void setActivationPolicy(ActivationPolicy policy) override;
    void activateIgnoringOtherApps() override;
    void quit() override;
    std::optional<std::string> bundleIdentifier() const override;
    bool openURL(const std::string& url) override;
    Subscription onBecameActive(std::function<void()> callback) override;

    /// Whether some program takes URLs.
    void setOpensURLs(bool opens) { m_opensURLs = opens; }
    /// Every URL that was to be opened, in order.
    [[nodiscard]] const std::vector<std::string>& openedURLs() const { return m_openedURLs; }
    [[nodiscard]] bool hasQuit() const { return m_hasQuit; }

private:
    SimulatedDesktop& m_desktop;
    ActivationPolicy m_policy = ActivationPolicy::regular;
    std::vector<std::string> m_openedURLs;
    bool m_opensURLs = true;
    bool m_hasQuit = false;
    MergedNotice m_becameActive;
    Subscription m_worldChanges;
};

} // namespace kestrove
