#include "UI/OutputWindow/OutputWindowController.h"

#include "Util/ContentGeometry.h"
#include "Util/ScreenGeometry.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrove {

namespace {

constexpr Rect initialContentRect{0, 0, 1920, 1080};
constexpr Size minimumFrameSize{480, 270};

bool isPositive(Size size) {
    return size.width > 0 && size.height > 0;
}

Size smallerOfEachAxis(Size a, Size b) {
    return {std::min(a.width, b.width), std::min(a.height, b.height)};
}

WindowLevel level(bool alwaysOnTop) {
    return alwaysOnTop ? WindowLevel::floating : WindowLevel::normal;
}

} // namespace

OutputWindowController::OutputWindowController(OutputContainerView& contentView,
                                               OutputWindowOptions options,
                                               OutputWindowPlatform platform)
    : m_platform(std::move(platform))
    , m_window(m_platform.makeWindow(initialContentRect,
                                     WindowStyle::titled | WindowStyle::closable |
                                         WindowStyle::miniaturizable | WindowStyle::resizable))
    , m_scope(m_platform.loop) {
    if (!m_window)
        return;
    m_window->setTitle("kestrove");
    m_window->setContentView(contentView);
    m_window->setCollectionBehavior(CollectionBehavior::canJoinAllSpaces |
                                    CollectionBehavior::fullScreenNone);
    m_window->setLevel(level(options.alwaysOnTop));
    m_window->setMinimumSize(minimumFrameSize);
    m_window->center();
    m_liveResizeEnded = m_window->onLiveResizeEnded([this] { windowDidEndLiveResize(); });
    m_decorationsChanged = m_window->onDecorationsChanged([this] { windowDidChangeDecorations(); });
    if (!options.hidden || !prepareHiddenState())
        return;
    // It must exist on the desktop from the start, or nobody could capture it.
    m_scope.post([this] {
        if (m_isHiddenFromUser)
            m_window->orderFrontRegardless();
    });
}

std::optional<WindowID> OutputWindowController::windowID() const {
    if (!m_window || m_window->windowNumber() < 1)
        return std::nullopt;
    return static_cast<WindowID>(m_window->windowNumber());
}

void OutputWindowController::setAlwaysOnTop(bool alwaysOnTop) {
    if (m_window)
        m_window->setLevel(level(alwaysOnTop));
}

void OutputWindowController::show() {
    if (!m_window)
        return;
    if (m_isHiddenFromUser) {
        if (m_window->isMiniaturized())
            m_window->deminiaturize();
        m_window->orderFrontRegardless();
        return;
    }
    if (m_window->isFullScreen())
        m_window->toggleFullScreen();
    auto& application = m_platform.application;
    if (application.activationPolicy() != ActivationPolicy::regular)
        application.setActivationPolicy(ActivationPolicy::regular);
    application.activateIgnoringOtherApps();
    m_window->setFrame(frameForScreen(m_window->frame()), Redisplay::yes);
    m_window->makeKeyAndOrderFront();
    m_window->orderFrontRegardless();
}

void OutputWindowController::setHidden(bool hidden) {
    if (!m_window || hidden == m_isHiddenFromUser)
        return;
    if (!hidden)
        unhide();
    else if (prepareHiddenState())
        m_window->orderFrontRegardless();
}

bool OutputWindowController::prepareHiddenState() {
    const auto frame = m_window->frame();
    const auto offscreen = ContentGeometry::offscreenWindowFrame(frame.size(), screenFrames());
    if (!offscreen)
        return false;
    rememberPlacement(frame);
    m_isHiddenFromUser = true;
    m_window->setAllowsOffscreenPositioning(true);
    m_window->setFrame(*offscreen, Redisplay::no);
    // Nobody can capture a miniaturised window.
    if (m_window->isMiniaturized())
        m_window->deminiaturize();
    return true;
}

void OutputWindowController::rememberPlacement(const Rect& frame) {
    m_lastVisibleFrame = frame;
    m_lastVisibleDisplayID.reset();
    m_lastVisibleRelativePlacement.reset();
    const auto screen = targetScreen(frame, std::nullopt);
    if (!screen)
        return;
    m_lastVisibleDisplayID = ScreenGeometry::displayID(*screen);
    m_lastVisibleRelativePlacement =
        ContentGeometry::relativePlacement(frame, screen->visibleFrame);
}

void OutputWindowController::unhide() {
    m_isHiddenFromUser = false;
    m_window->setAllowsOffscreenPositioning(false);
    auto frame = m_lastVisibleFrame.value_or(m_window->frame());
    if (const auto screen = targetScreen(frame, m_lastVisibleDisplayID)) {
        frame = matchedFrame(frame, *screen);
        if (m_lastVisibleRelativePlacement)
            frame = ContentGeometry::positionedWindowFrame(
                        frame.size(), *m_lastVisibleRelativePlacement, screen->visibleFrame)
                        .value_or(frame);
        frame = ContentGeometry::clampedWindowFrame(frame, screen->visibleFrame).value_or(frame);
    }
    m_lastVisibleFrame = frame;
    m_window->setFrame(frame, Redisplay::yes);
    m_window->orderFrontRegardless();
}

void OutputWindowController::matchContentAspectRatio(Size pixelSize) {
    if (!m_window)
        return;
    const auto reference =
        m_isHiddenFromUser && m_lastVisibleFrame ? *m_lastVisibleFrame : m_window->frame();
    if (!m_aspectSizingBounds)
        m_aspectSizingBounds = m_window->contentRect(reference).size();
    if (!isPositive(pixelSize) || !isPositive(*m_aspectSizingBounds))
        return;
    m_matchedContentSize = pixelSize;
    m_window->setContentAspectRatio(pixelSize);
    if (m_isHiddenFromUser)
        matchWhileHidden(reference);
    else
        m_window->setFrame(frameForScreen(reference), Redisplay::yes);
}

void OutputWindowController::matchWhileHidden(const Rect& reference) {
    m_lastVisibleFrame = matchedFrame(reference, *m_aspectSizingBounds);
    const auto origin = m_window->frame().origin();
    const auto size = m_lastVisibleFrame->size();
    Rect parked{origin.x, origin.y, size.width, size.height};
    // A window that grows at the place where it was parked may reach into a screen: it is parked
    // anew then, for it must not be seen.
    const auto frames = screenFrames();
    if (ContentGeometry::bestIntersectionIndex(parked, frames))
        parked = ContentGeometry::offscreenWindowFrame(size, frames).value_or(parked);
    m_window->setFrame(parked, Redisplay::no);
}

void OutputWindowController::windowDidEndLiveResize() {
    m_aspectSizingBounds = m_window->contentRect(m_window->frame()).size();
}

void OutputWindowController::windowDidChangeDecorations() {
    // The content has lost the source's shape. Parked, it is given back with the frame.
    if (!m_isHiddenFromUser && m_matchedContentSize)
        m_window->setFrame(frameForScreen(m_window->frame()), Redisplay::yes);
}

std::vector<Rect> OutputWindowController::screenFrames() const {
    const auto screens = m_platform.screens.screens();
    std::vector<Rect> frames(screens.size());
    std::ranges::transform(screens, frames.begin(), &Screen::frame);
    return frames;
}

std::optional<Screen>
OutputWindowController::targetScreen(const Rect& frame,
                                     std::optional<DisplayID> preferredDisplayID) const {
    const auto screens = m_platform.screens.screens();
    if (preferredDisplayID) {
        const auto preferred = std::ranges::find(screens, preferredDisplayID, &Screen::displayID);
        if (preferred != screens.end())
            return *preferred;
    } else {
        std::vector<Rect> visibleFrames;
        for (const auto& screen : screens)
            visibleFrames.push_back(screen.visibleFrame);
        if (const auto index = ContentGeometry::bestIntersectionIndex(frame, visibleFrames))
            return screens[*index];
    }
    if (const auto main = ScreenGeometry::mainScreen(screens))
        return main;
    return screens.empty() ? std::nullopt : std::optional(screens.front());
}

Rect OutputWindowController::matchedFrame(const Rect& reference, Size available) const {
    const auto size = *m_matchedContentSize;
    if (!isPositive(available))
        return reference;
    const double widthFactor = available.width / size.width;
    const double heightFactor = available.height / size.height;
    const double factor = std::min(widthFactor, heightFactor);
    // The axis that limits takes what is available: rounding down a product that misses it by a
    // rounding error would lose a point, and the window would change its size for nothing.
    const double width = factor == widthFactor ? available.width : size.width * factor;
    const double height = factor == heightFactor ? available.height : size.height * factor;
    const Rect content{0, 0, std::floor(width), std::floor(height)};
    const auto frame = m_window->frameRect(content).size();
    const auto center = reference.center();
    return {center.x - frame.width / 2, center.y - frame.height / 2, frame.width, frame.height};
}

Rect OutputWindowController::matchedFrame(const Rect& reference, const Screen& on) const {
    if (!m_matchedContentSize || !m_aspectSizingBounds)
        return reference;
    const auto visibleContent = m_window->contentRect(on.visibleFrame).size();
    return matchedFrame(reference, smallerOfEachAxis(visibleContent, *m_aspectSizingBounds));
}

Rect OutputWindowController::frameForScreen(const Rect& reference) const {
    const auto screen = targetScreen(reference, std::nullopt);
    if (!screen)
        return reference;
    const auto frame = matchedFrame(reference, *screen);
    return ContentGeometry::clampedWindowFrame(frame, screen->visibleFrame).value_or(frame);
}

} // namespace kestrove
