#pragma once

#include "Tests/Support/Processes/ChildProcess.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/XDesktop.h"

#include <memory>
#include <xcb/xcb.h>

namespace kestrove::test {

/// ffmpeg, which captures a window as a program does that knows nothing of ours: by its identifier
/// alone, ten times a second, from the construction on. It tells the colour of one place.
///
/// When it ends it is started again: it does not outlive a window that is away just when it asks,
/// and for an instant a window manager may take away what it lets go of (openbox unmaps it). Calls
/// ask again, too.
class WindowGrab {
public:
    /// A share of the window's width and height each, 0 to 1.
    struct Spot {
        double x = 0.5;
        double y = 0.5;
    };

    WindowGrab(XDesktop& desktop, xcb_window_t window, Spot spot);
    ~WindowGrab();
    WindowGrab(const WindowGrab&) = delete;
    WindowGrab& operator=(const WindowGrab&) = delete;

    /// Whether a frame from now on has that colour there before the tests' patience is over.
    [[nodiscard]] bool sees(Color color);
    /// What it saw last.
    [[nodiscard]] Color last() const { return m_last; }
    [[nodiscard]] bool isRunning() { return m_program->isRunning(); }

private:
    void begin();
    void end();
    void readFrames();

    XDesktop& m_desktop;
    xcb_window_t m_window;
    Spot m_spot;
    std::unique_ptr<ChildProcess> m_program;
    int m_frames = -1;
    Color m_last = 0;
};

} // namespace kestrove::test
