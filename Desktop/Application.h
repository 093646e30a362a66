#pragma once

#include "Async/Subscription.h"

#include <functional>
#include <optional>
#include <string>

namespace kestrove {

enum class ActivationPolicy {
    /// Has a place in the task switcher.
    regular,
    /// Has windows but no place in the task switcher.
    accessory,
    prohibited,
};

/// This application as the desktop sees it.
///
/// Thread: main. Callbacks come from the main loop.
class Application {
public:
    Application() = default;
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;
    virtual ~Application() = default;

    /// Whether one of our windows has the focus.
    [[nodiscard]] virtual bool isActive() const = 0;
    [[nodiscard]] virtual ActivationPolicy activationPolicy() const = 0;
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    /// Comes to the front even while another application is active.
    virtual void activateIgnoringOtherApps() = 0;
    virtual void quit() = 0;

    /// Absent when the program does not run from an installed or built application.
    [[nodiscard]] virtual std::optional<std::string> bundleIdentifier() const = 0;

    /// Returns whether some program took the URL.
    virtual bool openURL(const std::string& url) = 0;

    [[nodiscard]] virtual Subscription onBecameActive(std::function<void()> callback) = 0;
};

} // namespace kestrove
