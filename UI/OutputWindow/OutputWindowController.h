#pragma once

#include "Async/MainLoop.h"
#include "Async/TaskScope.h"
#include "Core/Collaborators/OutputControlling.h"
#include "Desktop/Application.h"
#include "Desktop/Screens.h"
#include "UI/OutputWindow/OutputWindow.h"

#include <memory>
#include <optional>
#include <vector>

namespace kestrove {

/// What the output window's controller needs of the desktop. All of it outlives the controller.
struct OutputWindowPlatform {
    MainLoop& loop;
    Screens& screens;
    Application& application;
    MakeOutputWindow makeWindow;
};

struct OutputWindowOptions {
    bool alwaysOnTop = false;
    /// Parked outside every screen from the start.
    bool hidden = false;
};

/// Owns the window that the user shares: keeps its shape equal to the source's, keeps it on top on
/// request, and hides it from the user's own desktop by parking it outside every screen, where
/// other programs go on capturing it. It comes back to the same relative place on the same display.
///
/// Frames are in points, screen coordinates. Thread: main.
class OutputWindowController final : public OutputWindowControlling {
public:
    OutputWindowController(OutputContainerView& contentView, OutputWindowOptions options,
                           OutputWindowPlatform platform);

    std::optional<WindowID> windowID() const override;
    void show() override;
    void setHidden(bool hidden) override;
    void setAlwaysOnTop(bool alwaysOnTop) override;
    void matchContentAspectRatio(Size pixelSize) override;

    [[nodiscard]] bool isHiddenFromUser() const { return m_isHiddenFromUser; }

private:
    bool prepareHiddenState();
    void unhide();
    void rememberPlacement(const Rect& frame);
    void windowDidEndLiveResize();
    void windowDidChangeDecorations();
    void matchWhileHidden(const Rect& reference);
    [[nodiscard]] std::optional<Screen>
    targetScreen(const Rect& frame, std::optional<DisplayID> preferredDisplayID) const;
    [[nodiscard]] std::vector<Rect> screenFrames() const;
    [[nodiscard]] Rect matchedFrame(const Rect& reference, Size available) const;
    [[nodiscard]] Rect matchedFrame(const Rect& reference, const Screen& on) const;
    [[nodiscard]] Rect frameForScreen(const Rect& reference) const;

    OutputWindowPlatform m_platform;
    std::unique_ptr<OutputWindow> m_window;
    bool m_isHiddenFromUser = false;
    /// The frame at which the user last saw the window; while hidden, the one to come back to.
    std::optional<Rect> m_lastVisibleFrame;
    std::optional<DisplayID> m_lastVisibleDisplayID;
    /// Where that frame lay within its display's visible frame, 0 to 1 an axis.
    std::optional<Point> m_lastVisibleRelativePlacement;
    /// The content size that the user chose, in points: aspect matching never goes beyond it.
    std::optional<Size> m_aspectSizingBounds;
    /// The pixel size whose aspect ratio the window has now.
    std::optional<Size> m_matchedContentSize;
    Subscription m_liveResizeEnded;
    Subscription m_decorationsChanged;
    TaskScope m_scope;
};

} // namespace kestrove
