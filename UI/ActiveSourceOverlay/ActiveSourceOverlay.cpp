#include "UI/ActiveSourceOverlay/ActiveSourceOverlay.h"

#include "UI/ActiveSourceOverlay/ActiveSourceOverlayVisibility.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kestrove {

namespace {

/// A row without a layer is taken for a normal window, one without an opacity for an opaque one:
/// that is what windows are of which nothing else is said.
std::optional<OverlayWindowSnapshot> snapshot(const WindowDescription& row) {
    if (!row.windowNumber || !row.ownerProcessID || !row.bounds)
        return std::nullopt;
    return OverlayWindowSnapshot{*row.windowNumber, *row.ownerProcessID, row.layer.value_or(0),
                                 row.alpha.value_or(1), *row.bounds};
}

} // namespace

ActiveSourceOverlay::ActiveSourceOverlay(std::unique_ptr<OverlayWindow> window,
                                         ActiveSourceOverlaySurroundings surroundings)
    : m_with(std::move(surroundings))
    , m_window(std::move(window)) {}

std::optional<WindowID> ActiveSourceOverlay::windowID() const {
    const auto number = m_window->windowNumber();
    if (number < 1 || number > std::numeric_limits<WindowID>::max())
        return std::nullopt;
    return static_cast<WindowID>(number);
}

void ActiveSourceOverlay::show(CaptureSource source) {
    m_currentSource = source;
    startTracking();
    updateFrame();
}

void ActiveSourceOverlay::hide() {
    m_currentSource.reset();
    m_firstLook.cancel();
    m_trackingTimer.cancel();
    m_windowsChanged.cancel();
    m_screensChanged.cancel();
    m_window->orderOut();
}

void ActiveSourceOverlay::startTracking() {
    m_firstLook.cancel();
    m_lastChange = m_with.mainLoop.now();
    if (m_with.onWindowsChanged)
        m_windowsChanged = m_with.onWindowsChanged([this] { windowsChanged(); });
    m_screensChanged = m_with.screens.onChanged([this] { updateFrame(); });
    setPace(Pace::tracking);
}

void ActiveSourceOverlay::setPace(Pace pace) {
    m_pace = pace;
    m_trackingTimer = m_with.mainLoop.runEvery(
        pace == Pace::tracking ? trackingInterval : restingInterval, [this] { tick(); });
}

void ActiveSourceOverlay::tick() {
    updateFrame();
    if (m_pace == Pace::tracking && m_with.onWindowsChanged &&
        m_with.mainLoop.now() - m_lastChange >= timeToRest)
        setPace(Pace::resting);
}

void ActiveSourceOverlay::windowsChanged() {
    m_lastChange = m_with.mainLoop.now();
    if (m_pace == Pace::tracking)
        return;
    setPace(Pace::tracking);
    // Not in here: the window list may be in the middle of taking in what has changed.
    m_firstLook = m_with.mainLoop.runAfter(Seconds(0), [this] { updateFrame(); });
}

void ActiveSourceOverlay::updateFrame() {
    if (!m_currentSource)
        return;
    // The windows say nothing of a display's frame; they only may have come to lie above ours where
    // it is seen already, after a change that we were told of.
    const bool looksAtWindows =
        m_currentSource->isWindow() ||
        (m_with.onWindowsChanged && m_pace == Pace::tracking && m_window->isVisible());
    const auto windows = looksAtWindows ? readWindows() : std::nullopt;
    const auto frame = m_currentSource->isWindow()
                           ? visibleBounds(m_currentSource->identifier(), windows)
                           : displayFrame(m_currentSource->identifier());
    if (!frame) {
        if (m_window->isVisible())
            m_window->orderOut();
        return;
    }
    m_window->setFrame(*frame);
    if (!m_window->isVisible() || isBehindNormalWindow(windows))
        m_window->orderFrontRegardless();
}

ActiveSourceOverlay::WindowList ActiveSourceOverlay::readWindows() const {
    return m_with.windowServer.windowList(WindowListOptions::onScreenOnly |
                                          WindowListOptions::excludeDesktopElements);
}

std::optional<Rect> ActiveSourceOverlay::visibleBounds(WindowID window,
                                                       const WindowList& windows) const {
    if (!windows)
        return std::nullopt;
    std::vector<OverlayWindowSnapshot> snapshots;
    for (const auto& row : *windows) {
        if (const auto converted = snapshot(row))
            snapshots.push_back(*converted);
    }
    const auto target =
        ActiveSourceOverlayVisibility::visibleTarget(window, m_with.currentProcess, snapshots);
    if (!target)
        return std::nullopt;
    const auto screens = m_with.screens.screens();
    const double mainHeight = screens.empty() ? 0 : screens.front().frame.height;
    const auto& bounds = target->bounds;
    return Rect{bounds.x, mainHeight - bounds.y - bounds.height, bounds.width, bounds.height};
}

std::optional<Rect> ActiveSourceOverlay::displayFrame(DisplayID display) const {
    const auto screens = m_with.screens.screens();
    const auto screen = std::ranges::find(screens, std::optional(display), &Screen::displayID);
    return screen == screens.end() ? std::nullopt : std::optional(screen->frame);
}

bool ActiveSourceOverlay::isBehindNormalWindow(const WindowList& windows) const {
    const auto own = windowID();
    if (!windows || !own)
        return false;
    const auto self = std::ranges::find(*windows, own, &WindowDescription::windowNumber);
    return self != windows->end() && std::any_of(windows->begin(), self, [](const auto& row) {
               return row.layer.value_or(0) == 0;
           });
}

} // namespace kestrove
