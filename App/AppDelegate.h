#pragma once

#include "Async/Subscription.h"
#include "Core/AppController/AppController.h"
#include "Core/Collaborators/OutputControlling.h"
#include "Core/Settings/AppSettings.h"
#include "Desktop/Application.h"

namespace kestrove {

/// What the application does at the turns of its life. Everything that it is given outlives it.
///
/// Thread: main.
class AppDelegate {
public:
    AppDelegate(Application& application, AppSettings& settings, AppController& controller,
                OutputWindowControlling& outputWindow, OutputContentControlling& outputContent);

    /// The main loop runs from now on: shows the application and, when the user wants that, starts
    /// to share.
    void applicationDidFinishLaunching();

    /// Ends the application. As long as it has no place in the tray, closing its one window would
    /// leave a program behind that nobody sees and that goes on capturing, so it ends with it.
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
    Subscription m_becameActive;
    Subscription m_sessionState;
};

} // namespace kestrove
