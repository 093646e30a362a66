#pragma once

#include "Async/Subscription.h"
#include "Core/AppController/AppController.h"
#include "Core/Collaborators/OutputControlling.h"
#include "Core/Settings/AppSettings.h"
#include "Desktop/Application.h"

#include <functional>

namespace kestrove {

/// What the application does at the turns of its life. Everything that it is given outlives it.
///
/// Thread: main.
class AppDelegate {
public:
    /// `hasTray` says whether there is a tray now, with our icon in it. `openPanelWindow` brings
    /// the panel up as a window of its own.
    AppDelegate(Application& application, AppSettings& settings, AppController& controller,
                OutputWindowControlling& outputWindow, OutputContentControlling& outputContent,
                ActiveSourceOverlayControlling& activeOverlay, std::function<bool()> hasTray,
                std::function<void()> openPanelWindow);

    /// The main loop runs from now on: shows the application and, when the user wants that, starts
    /// to share.
    void applicationDidFinishLaunching();

    /// The user has started the application while it runs: the panel comes to the front.
    void applicationStartedAgain();

    /// With a place in the tray the application stays, and what the window shows is only out of
    /// sight. Without one, that would leave a program behind that nobody sees and that goes on
    /// capturing, so it ends with its window.
    void outputWindowClosed();

    /// Ends the application as the user, or the system, wishes.
    void terminate();

    /// Whether the session is on, or on its way to or from it.
    [[nodiscard]] bool isSharing() const;

private:
    Application& m_application;
    AppSettings& m_settings;
    AppController& m_controller;
    OutputWindowControlling& m_outputWindow;
    OutputContentControlling& m_outputContent;
    ActiveSourceOverlayControlling& m_activeOverlay;
    std::function<bool()> m_hasTray;
    std::function<void()> m_openPanelWindow;
    Subscription m_becameActive;
    Subscription m_sessionState;
};

} // namespace kestrove
