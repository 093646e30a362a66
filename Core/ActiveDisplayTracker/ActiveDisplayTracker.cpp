#include "Core/ActiveDisplayTracker/ActiveDisplayTracker.h"

#include "Util/ScreenGeometry.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kestrove {

namespace {

/// Points; a window must be larger than this both ways. Smaller ones are tool windows, badges and
/// the like, and do not tell where the user works.
constexpr double smallestSide = 100;

/// The largest of the process's windows; the one further in front among equals. Points, window
/// server coordinates.
std::optional<Rect> largestWindow(const std::vector<WindowDescription>& windows,
                                  ProcessID process) {
    std::optional<Rect> largest;
    for (const auto& window : windows) {
        if (window.ownerProcessID != process || !window.bounds)
            continue;
        const Rect& bounds = *window.bounds;
        if (!(bounds.width > smallestSide && bounds.height > smallestSide))
            continue;
        if (!largest || bounds.width * bounds.height > largest->width * largest->height)
            largest = bounds;
    }
    return largest;
}

/// From window server to screen coordinates, flipped at the highest edge of all screens.
Point screenPoint(Point windowServerPoint, const std::vector<Screen>& screens) {
    std::optional<double> top;
    for (const auto& screen : screens)
        top = std::max(top.value_or(screen.frame.maxY()), screen.frame.maxY());
    return {windowServerPoint.x, top.value_or(0) - windowServerPoint.y};
}

} // namespace

ActiveDisplayTracker::ActiveDisplayTracker(FollowedDesktop desktop, FollowMode mode,
                                           Seconds debounceInterval)
    : m_desktop(desktop)
    , m_mode(mode)
    , m_pendingRecompute(desktop.mainLoop, debounceInterval,
                         [this] { recompute(Announcement::whenChanged); }) {}

void ActiveDisplayTracker::start(FollowMode mode) {
    setMode(mode);
    stop();
    m_announcesNext = false;
    recompute(Announcement::always);
    const auto scheduleRecompute = [this] { m_pendingRecompute.schedule(); };
    switch (mode) {
    case FollowMode::mouse:
        m_mouseMonitor = m_desktop.pointer.addGlobalMovedMonitor(scheduleRecompute);
        m_localMouseMonitor = m_desktop.pointer.addLocalMovedMonitor(scheduleRecompute);
        break;
    case FollowMode::focusedApp:
        m_workspaceObserver = m_desktop.workspace.onApplicationActivated(
            [scheduleRecompute](const RunningApplication&) { scheduleRecompute(); });
        break;
    case FollowMode::manual:
        break;
    }
}

void ActiveDisplayTracker::stop() {
    m_mouseMonitor.cancel();
    m_localMouseMonitor.cancel();
    m_workspaceObserver.cancel();
    m_pendingRecompute.cancel();
}

void ActiveDisplayTracker::recompute(Announcement announcement) {
    if (m_mode == FollowMode::manual)
        return;
    const auto display =
        m_mode == FollowMode::mouse
            ? ScreenGeometry::displayIDUnderMouse(m_desktop.pointer, m_desktop.screens)
            : displayOfFocusedApplication();
    const bool isAwaited = std::exchange(m_announcesNext, false);
    if (isAwaited || announcement == Announcement::always || display != m_currentDisplay.get())
        m_currentDisplay.set(display);
}

std::optional<DisplayID> ActiveDisplayTracker::displayOfFocusedApplication() const {
    const auto frontmost = m_desktop.workspace.frontmostApplication();
    if (!frontmost)
        return std::nullopt;
    const auto windows = m_desktop.windowServer.windowList(
        WindowListOptions::onScreenOnly | WindowListOptions::excludeDesktopElements);
    const auto largest = windows ? largestWindow(*windows, frontmost->processID) : std::nullopt;

    const auto screens = m_desktop.screens.screens();
    const auto point =
        largest ? screenPoint(largest->center(), screens) : m_desktop.pointer.location();
    const auto screen = ScreenGeometry::screen(point, screens);
    if (const auto display = screen ? ScreenGeometry::displayID(*screen) : std::nullopt)
        return display;
    return ScreenGeometry::displayIDUnderMouse(m_desktop.pointer, m_desktop.screens);
}

} // namespace kestrove
