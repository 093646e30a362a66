#include "UI/OutputWindow/QtOutputWindow.h"

#include "UI/Composer/OutputContainerWidget.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <cmath>
#include <utility>

namespace kestrove {

namespace {

/// X does not tell when the user lets go of a window's edge. A hand that rests this long has chosen
/// a size.
constexpr Seconds restAfterResizing{0.3};
/// For so long after the program set another size, what the window manager makes of it is its
/// answer and not the user's doing, unless it has given the window the size that was asked for. A
/// busy one applies the limits to the old size first and comes to the new one a second later.
constexpr Seconds answerToASize{2};
/// The same after the window was shown, which few window managers answer by a size.
constexpr Seconds answerToShowing{0.5};
/// A refusal is not told, so it is looked for this often, and a busy window manager's for this
/// long.
constexpr Seconds refusalIsLookedForEvery{0.05};
constexpr Seconds refusalIsLookedForUntil{2};

Rect toRect(const QRect& rect) {
    return {static_cast<double>(rect.x()), static_cast<double>(rect.y()),
            static_cast<double>(rect.width()), static_cast<double>(rect.height())};
}

QRect toPixels(const Rect& rect) {
    const auto whole = [](double value) { return static_cast<int>(std::lround(value)); };
    return {whole(rect.x), whole(rect.y), whole(rect.width), whole(rect.height)};
}

Size toSize(const QSize& size) {
    return {static_cast<double>(size.width()), static_cast<double>(size.height())};
}

Qt::WindowFlags flags(WindowStyle style) {
    auto flags = Qt::Window | Qt::CustomizeWindowHint;
    if (has(style, WindowStyle::titled))
        flags |= Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
    if (has(style, WindowStyle::closable))
        flags |= Qt::WindowCloseButtonHint;
    if (has(style, WindowStyle::miniaturizable))
        flags |= Qt::WindowMinimizeButtonHint;
    if (has(style, WindowStyle::resizable))
        flags |= Qt::WindowMaximizeButtonHint;
    return flags;
}

/// The part of a screen that a window may take at its start. Some window managers maximise what
/// opens as large as the screen, decorations included, and keep it so whatever frame it is given.
constexpr double roomAtTheStart = 0.9;

/// Shrunk to fit, its aspect ratio kept.
Size fitted(Size size, Size available) {
    const double factor =
        std::min({1.0, available.width / size.width, available.height / size.height});
    return {std::floor(size.width * factor), std::floor(size.height * factor)};
}

} // namespace

QtOutputWindow::QtOutputWindow(QtOutputWindowSurroundings surroundings, const Rect& contentRect,
                               WindowStyle style)
    : m_loop(surroundings.loop)
    , m_screens(surroundings.screens)
    , m_requests(std::move(surroundings.requests))
    , m_widget(std::move(surroundings.commands), flags(style))
    , m_resizeRests(m_loop, restAfterResizing, [this] { endLiveResize(); })
    , m_scope(m_loop) {
    if (m_requests.keepContent)
        m_requests.keepContent(m_widget.winId());
    // Posted: a frame is not set from inside the report of another one.
    const auto adoptLater = [this] { m_scope.post([this] { adoptDecorations(); }); };
    // Nobody tells that the decorations have become others; these are the moments after it.
    m_subscriptions.push_back(
        m_widget.exposed.subscribe([this] { m_scope.post([this] { shownByDesktop(); }); }));
    m_subscriptions.push_back(m_widget.sizeTold.subscribe([this](const QSize& size) {
        if (m_requested && size == m_requested->geometry.size())
            m_answerIsDueUntil = Seconds{-1};
    }));
    m_subscriptions.push_back(m_widget.moved.subscribe(adoptLater));
    m_subscriptions.push_back(m_widget.resizedByDesktop.subscribe([this, adoptLater] {
        resizedByDesktop();
        adoptLater();
    }));
    auto content = contentRect;
    if (const auto visible = mainVisibleFrame()) {
        const auto size = fitted(
            content.size(), {roomAtTheStart * visible->width, roomAtTheStart * visible->height});
        content = {content.x, content.y, size.width, size.height};
    }
    setFrame(frameRect(content), Redisplay::no);
}

QtOutputWindow::~QtOutputWindow() {
    m_widget.releaseContent();
}

std::int64_t QtOutputWindow::windowNumber() const {
    return static_cast<std::int64_t>(m_widget.winId());
}

ToolkitCoordinates QtOutputWindow::coordinates() const {
    std::vector<Rect> frames;
    for (const auto& screen : m_screens.screens())
        frames.push_back(screen.frame);
    std::vector<Rect> toolkitFrames;
    for (const auto* screen : QGuiApplication::screens())
        toolkitFrames.push_back(toRect(screen->geometry()));
    return {frames, toolkitFrames};
}

std::optional<Rect> QtOutputWindow::mainVisibleFrame() const {
    const auto screens = m_screens.screens();
    const auto main = std::ranges::find(screens, true, &Screen::isMain);
    return main == screens.end() ? std::nullopt : std::optional(main->visibleFrame);
}

Rect QtOutputWindow::frame() const {
    if (isAsRequested())
        return m_requested->frame;
    return frameRect(coordinates().toScreen(toRect(m_widget.geometry())));
}

void QtOutputWindow::setFrame(const Rect& frame, Redisplay /*redisplay*/) {
    m_lastRequest = m_loop.now();
    const auto geometry = toPixels(coordinates().toToolkit(contentRect(frame)));
    if (isAnswerDue() || m_widget.windowHandle()->size() != geometry.size())
        m_answerIsDueUntil = m_loop.now() + answerToASize;
    if (m_isParked)
        park(geometry);
    // First what both sizes are allowed by: Qt enlarges a window that is below its smallest size.
    applyMinimumSize(m_widget.size().boundedTo(geometry.size()));
    m_widget.setGeometry(geometry);
    m_requested = Requested{frame, m_widget.geometry()};
    applyMinimumSize(geometry.size());
}

Rect QtOutputWindow::contentRect(const Rect& frame) const {
    const auto& around = m_decorations;
    return {frame.x + around.left(), frame.y + around.bottom(),
            std::max(0.0, frame.width - around.left() - around.right()),
            std::max(0.0, frame.height - around.top() - around.bottom())};
}

Rect QtOutputWindow::frameRect(const Rect& content) const {
    const auto& around = m_decorations;
    return {content.x - around.left(), content.y - around.bottom(),
            content.width + around.left() + around.right(),
            content.height + around.top() + around.bottom()};
}

void QtOutputWindow::setAllowsOffscreenPositioning(bool allows) {
    if (m_isParked == allows)
        return;
    m_isParked = allows;
    if (!allows) {
        if (m_requests.unpark)
            m_requests.unpark(m_widget.winId());
        m_widget.hide();
    }
    applyFlags();
}

void QtOutputWindow::park(const QRect& place) {
    if (!m_widget.isVisible())
        return;
    if (m_requests.park)
        m_requests.park(m_widget.winId(), toRect(place));
    // It comes back at a frame, also when it filled the screen before.
    m_widget.setWindowState(m_widget.windowState() & Qt::WindowMinimized);
}

bool QtOutputWindow::isMiniaturized() const {
    return m_widget.isMinimized();
}

void QtOutputWindow::deminiaturize() {
    m_widget.setWindowState(m_widget.windowState() & ~Qt::WindowMinimized);
}

bool QtOutputWindow::isFullScreen() const {
    return m_widget.isFullScreen();
}

void QtOutputWindow::toggleFullScreen() {
    m_widget.setWindowState(m_widget.windowState() ^ Qt::WindowFullScreen);
}

void QtOutputWindow::makeKeyAndOrderFront() {
    deminiaturize();
    show(Activation::wanted);
    m_widget.raise();
    if (m_requests.activate)
        m_requests.activate(m_widget.winId());
    else
        m_widget.activateWindow();
}

void QtOutputWindow::orderFrontRegardless() {
    show(Activation::unwanted);
    m_widget.raise();
}

void QtOutputWindow::show(Activation activation) {
    if (m_widget.isVisible())
        return;
    m_lastRequest = m_loop.now();
    m_answerIsDueUntil = std::max(m_answerIsDueUntil, m_loop.now() + answerToShowing);
    m_widget.setAttribute(Qt::WA_ShowWithoutActivating, activation == Activation::unwanted);
    m_isToBePlaced = true;
    m_widget.show();
    if (m_isParked)
        park(m_widget.geometry());
    if (m_level != WindowLevel::normal)
        applyLevel();
    awaitAnswer();
    joinAllWorkspaces();
    if (!m_isParked && m_requests.joinLists)
        m_requests.joinLists(m_widget.winId());
}

void QtOutputWindow::setTitle(std::string_view title) {
    m_widget.setWindowTitle(QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size())));
}

void QtOutputWindow::setContentView(OutputContainerView& view) {
    m_widget.setContent(static_cast<OutputContainerWidget&>(view));
}

void QtOutputWindow::setLevel(WindowLevel level) {
    m_level = level;
    applyLevel();
}

void QtOutputWindow::applyFlags() {
    const auto changed = [this](Qt::WindowFlags flags) {
        flags.setFlag(Qt::BypassWindowManagerHint, m_isParked);
        return flags;
    };
    // On both objects: the widget's own setter would make another native window.
    m_widget.overrideWindowFlags(changed(m_widget.windowFlags()));
    auto* const native = m_widget.windowHandle();
    native->setFlags(changed(native->flags()));
}

void QtOutputWindow::setCollectionBehavior(CollectionBehavior behavior) {
    const auto bits = static_cast<std::uint32_t>(behavior);
    m_isOnAllWorkspaces =
        (bits & static_cast<std::uint32_t>(CollectionBehavior::canJoinAllSpaces)) != 0;
    joinAllWorkspaces();
}

void QtOutputWindow::setMinimumSize(Size frameSize) {
    m_minimumFrameSize = frameSize;
    applyMinimumSize(requestedContent());
}

void QtOutputWindow::setContentAspectRatio(Size ratio) {
    // The size that the user has just given the window is what the new source is fitted into.
    if (m_resizeRests.isPending()) {
        m_resizeRests.cancel();
        endLiveResize();
    }
    // Told with the next frame: what the present size breaks, window managers would change at once.
    m_aspectRatio = ratio;
}

void QtOutputWindow::center() {
    const auto visible = mainVisibleFrame();
    if (!visible)
        return;
    const auto size = frame().size();
    const auto middle = visible->center();
    setFrame({std::floor(middle.x - size.width / 2), std::floor(middle.y - size.height / 2),
              size.width, size.height},
             Redisplay::no);
}

Subscription QtOutputWindow::onDecorationsChanged(std::function<void()> callback) {
    return m_decorationsChanged.subscribe(std::move(callback));
}

Subscription QtOutputWindow::onLiveResizeEnded(std::function<void()> callback) {
    return m_liveResizeEnded.subscribe(std::move(callback));
}

void QtOutputWindow::joinAllWorkspaces() {
    // Window managers forget it with every window that leaves the desktop.
    if (m_isOnAllWorkspaces && !m_isParked && m_widget.isVisible() && m_requests.joinAllWorkspaces)
        m_requests.joinAllWorkspaces(m_widget.winId());
}

void QtOutputWindow::applyLevel() {
    if (m_widget.isVisible() && !m_isParked && m_requests.setLevel)
        m_requests.setLevel(m_widget.winId(), m_level);
}

void QtOutputWindow::applyMinimumSize(const QSize& content) {
    const Rect frame{0, 0, m_minimumFrameSize.width, m_minimumFrameSize.height};
    const auto smallest = ResizeLimits::smallest(contentRect(frame).size(), toSize(content));
    m_widget.setMinimumSize(toPixels({0, 0, smallest.width, smallest.height}).size());
    awaitAnswer();
}

void QtOutputWindow::applyAspectRatio() {
    if (std::exchange(m_isAspectRatioDue, false) && m_aspectRatio &&
        m_requests.setContentAspectRatios)
        m_requests.setContentAspectRatios(
            m_widget.winId(),
            ResizeLimits::aspectRatios(*m_aspectRatio, toSize(requestedContent())));
}

QSize QtOutputWindow::requestedContent() const {
    return m_requested ? m_requested->geometry.size() : m_widget.size();
}

void QtOutputWindow::shownByDesktop() {
    const bool isNew = std::exchange(m_isToBePlaced, false);
    adoptDecorations();
    // Window managers place a window that they take over, some of them elsewhere than was asked
    // for. Once it is theirs, they do as they are asked.
    if (isNew && m_requested && m_requested->geometry != m_widget.geometry())
        setFrame(Rect(m_requested->frame), Redisplay::yes);
}

bool QtOutputWindow::isAnswerDue() const {
    return m_loop.now() <= m_answerIsDueUntil;
}

bool QtOutputWindow::isAsRequested() const {
    return m_requested && (m_requested->geometry == m_widget.geometry() || isAnswerDue());
}

void QtOutputWindow::adoptDecorations() {
    // Parked, or not yet taken over, it has none, but those that it comes back to are part of its
    // frame.
    if (m_isParked || m_isToBePlaced)
        return;
    const auto decorations = m_widget.windowHandle()->frameMargins();
    // A window manager that is about to put a frame around the window makes a tiny one first; for
    // that long the toolkit takes what the frame lacks for decorations.
    const bool isBeingFramed = std::min({decorations.left(), decorations.top(), decorations.right(),
                                         decorations.bottom()}) < 0;
    if (isBeingFramed || decorations == m_decorations)
        return;
    const bool isToBeSetAgain = isAsRequested();
    m_decorations = decorations;
    applyMinimumSize(requestedContent());
    if (isToBeSetAgain)
        setFrame(Rect(m_requested->frame), Redisplay::yes);
    m_decorationsChanged.emit();
}

void QtOutputWindow::resizedByDesktop() {
    // However late, what was asked for is an answer, and so was what came just before: of several
    // requests each has its own.
    if (m_requested && m_requested->geometry.size() == m_widget.geometry().size()) {
        m_resizeRests.cancel();
        return;
    }
    // Parked, it is out of the user's hands.
    if (!m_isParked && !isAnswerDue())
        m_resizeRests.schedule();
}

void QtOutputWindow::endLiveResize() {
    m_requested.reset();
    m_liveResizeEnded.emit();
}

void QtOutputWindow::awaitAnswer() {
    m_isAspectRatioDue = true;
    m_answer = m_loop.runAfter(refusalIsLookedForEvery, [this] { lookAtAnswer(); });
}

void QtOutputWindow::lookAtAnswer() {
    applyAspectRatio();
    m_widget.adoptNativeGeometry();
    adoptDecorations();
    if (m_loop.now() - m_lastRequest < refusalIsLookedForUntil)
        m_answer = m_loop.runAfter(refusalIsLookedForEvery, [this] { lookAtAnswer(); });
}

} // namespace kestrove
