#include "Core/ActiveSourceResolver/ActiveSourceResolver.h"

#include "Util/ScreenGeometry.h"

#include <algorithm>
#include <utility>

namespace kestrove {

namespace {

constexpr int normalLayer = 0;

} // namespace

ActiveSourceResolver::ActiveSourceResolver(FollowedDesktop desktop, Seconds debounceInterval)
    : m_desktop(desktop)
    , m_pendingRecompute(desktop.mainLoop, debounceInterval, [this] { recompute(); }) {}

void ActiveSourceResolver::setCandidates(std::vector<CaptureSource> candidates) {
    m_candidates = std::move(candidates);
}

void ActiveSourceResolver::recompute() {
    const auto source = pickActiveSource();
    if (source != m_currentSource.get())
        m_currentSource.set(source);
}

void ActiveSourceResolver::start() {
    stop();
    const auto scheduleRecompute = [this] { m_pendingRecompute.schedule(); };
    m_mouseMonitor = m_desktop.pointer.addGlobalMovedMonitor(scheduleRecompute);
    m_localMouseMonitor = m_desktop.pointer.addLocalMovedMonitor(scheduleRecompute);
    m_workspaceObserver = m_desktop.workspace.onApplicationActivated(
        [scheduleRecompute](const RunningApplication&) { scheduleRecompute(); });
    recompute();
}

void ActiveSourceResolver::stop() {
    m_mouseMonitor.cancel();
    m_localMouseMonitor.cancel();
    m_workspaceObserver.cancel();
    m_pendingRecompute.cancel();
}

std::optional<CaptureSource> ActiveSourceResolver::pickActiveSource() const {
    if (m_candidates.empty())
        return std::nullopt;
    if (m_candidates.size() == 1)
        return m_candidates.front();

    // A picked window in front beats everything; the pointer's display beats the front window's,
    // because it says where the user is now; the last choice is kept before the order decides.
    const auto front = frontWindow();
    if (front && isCandidate(CaptureSource::window(*front)))
        return CaptureSource::window(*front);
    const auto underPointer =
        ScreenGeometry::displayIDUnderMouse(m_desktop.pointer, m_desktop.screens);
    if (underPointer && isCandidate(CaptureSource::display(*underPointer)))
        return CaptureSource::display(*underPointer);
    const auto ofFront = front ? displayContaining(*front) : std::nullopt;
    if (ofFront && isCandidate(CaptureSource::display(*ofFront)))
        return CaptureSource::display(*ofFront);
    const auto& current = m_currentSource.get();
    if (current && isCandidate(*current))
        return current;
    return m_candidates.front();
}

bool ActiveSourceResolver::isCandidate(CaptureSource source) const {
    return std::ranges::find(m_candidates, source) != m_candidates.end();
}

std::optional<WindowID> ActiveSourceResolver::frontWindow() const {
    const auto frontmost = m_desktop.workspace.frontmostApplication();
    if (!frontmost)
        return std::nullopt;
    const auto windows = m_desktop.windowServer.windowList(
        WindowListOptions::onScreenOnly | WindowListOptions::excludeDesktopElements);
    if (!windows)
        return std::nullopt;
    const auto found = std::ranges::find_if(*windows, [&frontmost](const auto& window) {
        return window.ownerProcessID == frontmost->processID &&
               window.layer.value_or(normalLayer) == normalLayer && window.windowNumber;
    });
    return found == windows->end() ? std::nullopt : found->windowNumber;
}

std::optional<DisplayID> ActiveSourceResolver::displayContaining(WindowID window) const {
    // All windows, because the front one may have left the screens since it was found.
    const auto windows = m_desktop.windowServer.windowList(WindowListOptions::all);
    if (!windows)
        return std::nullopt;
    const auto found = std::ranges::find(*windows, window, &WindowDescription::windowNumber);
    if (found == windows->end() || !found->bounds)
        return std::nullopt;
    // Window server coordinates hang from the first screen's top edge.
    const auto screens = m_desktop.screens.screens();
    const double height = screens.empty() ? 0 : screens.front().frame.height;
    const auto center = found->bounds->center();
    const auto screen = ScreenGeometry::screen({center.x, height - center.y}, screens);
    return screen ? ScreenGeometry::displayID(*screen) : std::nullopt;
}

} // namespace kestrove
