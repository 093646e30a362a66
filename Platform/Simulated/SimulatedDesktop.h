#pragma once

#include "Async/Signal.h"
#include "Platform/Simulated/SimulatedCaptureService.h"
#include "Platform/Simulated/SimulatedDefaultsStore.h"
#include "Platform/Simulated/SimulatedKeyboard.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Platform/Simulated/SimulatedViews.h"
#include "Platform/Simulated/SimulatedWorld.h"

#include <optional>
#include <string_view>
#include <vector>

namespace kestrove {

/// A whole desktop in memory: displays, windows, applications, pointer and session, and what its
/// services answer. Tests and simulations are its user; the adapters of this folder show it through
/// the seam.
///
/// It checks what is asked of it: naming a display, a window or an application that does not exist,
/// and every use off the main thread, ends the process.
///
/// Changes are visible at once to whoever asks; the adapters announce them from the main loop.
///
/// Thread: main. Lifetime: outlives every adapter over it.
class SimulatedDesktop {
public:
    /// A desktop without displays, on which only this program runs, and is not active.
    explicit SimulatedDesktop(SimulatedMainLoop& loop);
    SimulatedDesktop(const SimulatedDesktop&) = delete;
    SimulatedDesktop& operator=(const SimulatedDesktop&) = delete;
    ~SimulatedDesktop() = default;

    [[nodiscard]] SimulatedMainLoop& loop() const { return m_loop; }

    // Displays, in the desktop's own order; the first one is the main one.
    void addDisplay(SimulatedDisplay display);
    /// When the main display goes, the next one takes its place: every coordinate is counted from
    /// it afterwards.
    void removeDisplay(DisplayID display);
    /// Replaces the display of the same identifier.
    void setDisplay(SimulatedDisplay display);
    [[nodiscard]] const std::vector<SimulatedDisplay>& displays() const { return m_displays; }
    [[nodiscard]] const SimulatedDisplay* findDisplay(DisplayID display) const;
    /// Between the two coordinate systems, in either direction.
    [[nodiscard]] Rect flipped(Rect rect) const;
    [[nodiscard]] Point flipped(Point point) const;

    // Windows, front to back.
    /// In front of all others.
    WindowID openWindow(SimulatedWindow window);
    void closeWindow(WindowID window);
    /// Replaces the window of the same identifier, where it lies among the others.
    void setWindow(SimulatedWindow window);
    void moveWindow(WindowID window, Rect frame);
    void paintWindow(WindowID window, SimulatedColor color);
    void raiseWindow(WindowID window);
    [[nodiscard]] const std::vector<SimulatedWindow>& windows() const { return m_windows; }
    [[nodiscard]] const SimulatedWindow* findWindow(WindowID window) const;
    /// Whether the window list and the shareable content can be read at all.
    void setWindowListReadable(bool isReadable);
    [[nodiscard]] bool isWindowListReadable() const { return m_isWindowListReadable; }

    // Applications.
    ProcessID launchApplication(SimulatedApplicationProcess application);
    /// Ends the application, with its windows.
    void terminateApplication(ProcessID process);
    /// Gives the focus to an application, or to none.
    void activateApplication(std::optional<ProcessID> process);
    [[nodiscard]] const SimulatedApplicationProcess* findApplication(ProcessID process) const;
    [[nodiscard]] std::optional<ProcessID> activeApplication() const { return m_activeApplication; }
    /// This program itself.
    [[nodiscard]] ProcessID ownProcess() const { return m_ownProcess; }
    /// Absent for a program that does not run from an application.
    void setOwnBundleIdentifier(std::optional<std::string> identifier);

    /// Points, screen coordinates.
    void movePointer(Point to);
    [[nodiscard]] Point pointer() const { return m_pointer; }
    /// The front-most window on screen that holds the point (window server coordinates).
    [[nodiscard]] const SimulatedWindow* windowAt(Point point) const;

    // The session. Each is announced, whatever was announced before.
    void resignSession();
    void becomeSession();
    void sleepScreens();
    void wakeScreens();

    /// The permission to record the screen. Withdrawing it ends every running stream.
    void setRecordingAllowed(bool isAllowed);
    [[nodiscard]] bool isRecordingAllowed() const { return m_isRecordingAllowed; }

    [[nodiscard]] SimulatedCaptureService& capture() { return m_capture; }
    [[nodiscard]] SimulatedKeyboard& keyboard() { return m_keyboard; }
    [[nodiscard]] SimulatedDefaultsStore& defaults() { return m_defaults; }
    [[nodiscard]] SimulatedViews& views() { return m_views; }

    /// What the adapters watch. Raised inside the call that changes the world.
    struct Events {
        /// Anything that can be seen.
        Signal<> changed;
        Signal<> screensChanged;
        Signal<SimulatedApplicationProcess> applicationActivated;
        Signal<SimulatedApplicationProcess> applicationTerminated;
        Signal<> pointerMoved;
        Signal<> sessionResigned;
        Signal<> sessionBecameActive;
        Signal<> screensSlept;
        Signal<> screensWoke;
    };
    [[nodiscard]] Events& events() { return m_events; }

    void requireMainThread(std::string_view what) const { m_loop.requireMainThread(what); }

private:
    std::vector<SimulatedDisplay>::iterator requireDisplay(DisplayID display);
    std::vector<SimulatedWindow>::iterator requireWindow(WindowID window);
    void requireMainDisplayAtOrigin() const;
    void moveOrigin(double oldMainHeight);
    void keepPointerOnDisplay();

    SimulatedMainLoop& m_loop;
    std::vector<SimulatedDisplay> m_displays;
    std::vector<SimulatedWindow> m_windows;
    std::vector<SimulatedApplicationProcess> m_applications;
    std::optional<ProcessID> m_activeApplication;
    Point m_pointer;
    WindowID m_nextWindow = 100;
    ProcessID m_ownProcess = 1000;
    ProcessID m_nextProcess = 2000;
    bool m_isWindowListReadable = true;
    bool m_isRecordingAllowed = true;
    Events m_events;
    SimulatedCaptureService m_capture;
    SimulatedKeyboard m_keyboard;
    SimulatedDefaultsStore m_defaults;
    SimulatedViews m_views;
};

} // namespace kestrove
