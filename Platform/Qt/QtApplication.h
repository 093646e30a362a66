#pragma once

#include "Async/Signal.h"
#include "Async/TaskScope.h"
#include "Desktop/Application.h"

#include <QMetaObject>

#include <functional>
#include <optional>
#include <string>

class QWindow;

namespace kestrove {

/// This application on any desktop that Qt serves. Made after the QGuiApplication and destroyed
/// before it.
///
/// The activation policy is remembered, no more: on these desktops a place in the task switcher
/// belongs to each window, which asks for the policy when it appears.
///
/// Thread: main.
class QtApplication final : public Application {
public:
    /// Puts one of our windows in front and gives it the focus even though another application has
    /// it. Qt's own request may be refused by the window manager in favour of the active
    /// application, so that each desktop has to say how the user's own wish is told from that.
    using BringToFront = std::function<void(QWindow&)>;

    /// Without `bringToFront`, Qt's own request is used.
    QtApplication(MainLoop& loop, std::optional<std::string> bundleIdentifier,
                  BringToFront bringToFront = {});
    ~QtApplication() override;

    bool isActive() const override;
    ActivationPolicy activationPolicy() const override { return m_policy; }
    void setActivationPolicy(ActivationPolicy policy) override { m_policy = policy; }
    void activateIgnoringOtherApps() override;
    void quit() override;
    std::optional<std::string> bundleIdentifier() const override { return m_bundleIdentifier; }
    bool openURL(const std::string& url) override;
    Subscription onBecameActive(std::function<void()> callback) override;

private:
    std::optional<std::string> m_bundleIdentifier;
    BringToFront m_bringToFront;
    ActivationPolicy m_policy = ActivationPolicy::regular;
    Signal<> m_becameActive;
    QMetaObject::Connection m_stateConnection;
    TaskScope m_scope;
};

} // namespace kestrove
