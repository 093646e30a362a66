#pragma once

#include "Async/Debouncer.h"
#include "Async/Signal.h"
#include "Async/TaskScope.h"
#include "Async/Timer.h"
#include "Desktop/Screens.h"
#include "UI/OutputWindow/NativeWindowRequests.h"
#include "UI/OutputWindow/OutputWindow.h"
#include "UI/OutputWindow/OutputWindowWidget.h"
#include "UI/OutputWindow/ToolkitCoordinates.h"

#include <QMargins>
#include <QRect>

#include <optional>
#include <vector>

namespace kestrove {

/// What an output window of Qt is made with. The references outlive it.
struct QtOutputWindowSurroundings {
    MainLoop& loop;
    Screens& screens;
    NativeWindowRequests requests;
    OutputWindowCommands commands;
};

/// The output window as a top-level widget of Qt, one of whose pixels is a point.
///
/// Its native window is made with it and never made anew, so that the window's number stays. The
/// decorations are the window manager's: they are known only once the window was shown, and a frame
/// that was set before is then set again, so that it holds the decorations too.
class QtOutputWindow final : public OutputWindow {
public:
    QtOutputWindow(QtOutputWindowSurroundings surroundings, const Rect& contentRect,
                   WindowStyle style);
    ~QtOutputWindow() override;

    std::int64_t windowNumber() const override;
    Rect frame() const override;
    void setFrame(const Rect& frame, Redisplay redisplay) override;
    Rect contentRect(const Rect& frame) const override;
    Rect frameRect(const Rect& content) const override;

    /// No window manager lets a window that it manages leave the screens as far as is asked for
    /// here. Allowed to, the window is taken from its manager with the next frame; it keeps its
    /// decorations in all arithmetic, and so its size. Forbidden again, it is off the desktop until
    /// it is shown, for only then a window manager takes it back.
    void setAllowsOffscreenPositioning(bool allows) override;

    bool isMiniaturized() const override;
    void deminiaturize() override;
    bool isFullScreen() const override;
    void toggleFullScreen() override;
    void makeKeyAndOrderFront() override;
    void orderFrontRegardless() override;

    void setTitle(std::string_view title) override;
    /// `view` must be an OutputContainerWidget.
    void setContentView(OutputContainerView& view) override;
    void setLevel(WindowLevel level) override;
    void setCollectionBehavior(CollectionBehavior behavior) override;
    void setMinimumSize(Size frameSize) override;
    void setContentAspectRatio(Size ratio) override;
    void center() override;

    Subscription onDecorationsChanged(std::function<void()> callback) override;
    Subscription onLiveResizeEnded(std::function<void()> callback) override;

    [[nodiscard]] OutputWindowWidget& widget() { return m_widget; }

private:
    enum class Activation : std::uint8_t { wanted, unwanted };
    /// A frame that was set, and what Qt made of it: as long as that is unchanged, or the window
    /// manager still at work on it, so is the frame.
    struct Requested {
        Rect frame;
        QRect geometry;
    };

    [[nodiscard]] ToolkitCoordinates coordinates() const;
    [[nodiscard]] std::optional<Rect> mainVisibleFrame() const;
    void show(Activation activation);
    void applyFlags();
    void park(const QRect& place);
    void joinAllWorkspaces();
    void applyLevel();
    void applyMinimumSize(const QSize& content);
    [[nodiscard]] QSize requestedContent() const;
    void applyAspectRatio();
    void shownByDesktop();
    [[nodiscard]] bool isAnswerDue() const;
    [[nodiscard]] bool isAsRequested() const;
    void adoptDecorations();
    void resizedByDesktop();
    void endLiveResize();
    void awaitAnswer();
    void lookAtAnswer();

    MainLoop& m_loop;
    Screens& m_screens;
    NativeWindowRequests m_requests;
    OutputWindowWidget m_widget;
    std::optional<Requested> m_requested;
    QMargins m_decorations;
    Seconds m_lastRequest{0};
    /// Till then, or till the window is seen to have the size that was last asked for, another size
    /// is the window manager's and will not stay.
    Seconds m_answerIsDueUntil{-1};
    Size m_minimumFrameSize;
    std::optional<Size> m_aspectRatio;
    /// Qt has rewritten the window's hints without it, or the frame has become another.
    bool m_isAspectRatioDue = false;
    WindowLevel m_level = WindowLevel::normal;
    bool m_isOnAllWorkspaces = false;
    bool m_isParked = false;
    /// Shown, but not yet seen to be on the desktop: the window manager may still be at work on it.
    bool m_isToBePlaced = false;
    Signal<> m_decorationsChanged;
    Signal<> m_liveResizeEnded;
    Debouncer m_resizeRests;
    Timer m_answer;
    std::vector<Subscription> m_subscriptions;
    TaskScope m_scope;
};

} // namespace kestrove
