#pragma once

#include "Async/Signal.h"
#include "Desktop/Application.h"

#include <vector>

namespace kestrove {

/// This application as a test wants it to be.
class ScriptedApplication final : public Application {
public:
    bool isActive() const override { return active; }
    ActivationPolicy activationPolicy() const override { return policy; }
    void setActivationPolicy(ActivationPolicy newPolicy) override { policy = newPolicy; }
    void activateIgnoringOtherApps() override { active = true; }
    void quit() override { hasQuit = true; }
    std::optional<std::string> bundleIdentifier() const override { return identifier; }
    bool openURL(const std::string& url) override {
        openedURLs.push_back(url);
        return true;
    }
    Subscription onBecameActive(std::function<void()> callback) override {
        return becameActive.subscribe(std::move(callback));
    }

    bool active = false;
    bool hasQuit = false;
    ActivationPolicy policy = ActivationPolicy::prohibited;
    std::optional<std::string> identifier = "dev.kestrove";
    std::vector<std::string> openedURLs;
    Signal<> becameActive;
};

} // namespace kestrove
