#pragma once

#include "Async/MainLoop.h"
#include "Async/Subscription.h"
#include "Core/Collaborators/OutputControlling.h"
#include "Desktop/OverlayWindow.h"
#include "Desktop/Screens.h"
#include "Desktop/WindowServer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace kestrove {

/// What the overlay looks at. All of it outlives the overlay.
struct ActiveSourceOverlaySurroundings {
    MainLoop& mainLoop;
    WindowServer& windowServer;
    Screens& screens;
    /// Our own: a window of ours is never marked.
    ProcessID currentProcess = 0;
    /// Tells, from the main loop, that windows may have moved, come, gone or been restacked; for as
    /// long as the subscription lives. Empty on a desktop that does not tell.
    std::function<Subscription(std::function<void()>)> onWindowsChanged = {};
};

/// Marks the source that is shared on the user's own screen: the whole display, or the shared
/// window as long as some part of it can be seen.
///
/// The mark follows its source 30 times a second. Where the desktop tells of changes, it does so
/// only from a change until half a second after the last one (window managers go on for a while:
/// they resize the frame first and the window later), and otherwise looks once a second, in case a
/// change was not told.
///
/// Thread: main.
class ActiveSourceOverlay final : public ActiveSourceOverlayControlling {
public:
    static constexpr Seconds trackingInterval{1.0 / 30};
    static constexpr Seconds restingInterval{1};
    static constexpr Seconds timeToRest{0.5};

    ActiveSourceOverlay(std::unique_ptr<OverlayWindow> window,
                        ActiveSourceOverlaySurroundings surroundings);

    std::optional<WindowID> windowID() const override;
    void show(CaptureSource source) override;
    void hide() override;

private:
    enum class Pace : std::uint8_t { tracking, resting };
    using WindowList = std::optional<std::vector<WindowDescription>>;

    void startTracking();
    void setPace(Pace pace);
    void tick();
    void windowsChanged();
    void updateFrame();
    [[nodiscard]] WindowList readWindows() const;
    [[nodiscard]] std::optional<Rect> visibleBounds(WindowID window,
                                                    const WindowList& windows) const;
    [[nodiscard]] std::optional<Rect> displayFrame(DisplayID display) const;
    [[nodiscard]] bool isBehindNormalWindow(const WindowList& windows) const;

    ActiveSourceOverlaySurroundings m_with;
    std::unique_ptr<OverlayWindow> m_window;
    std::optional<CaptureSource> m_currentSource;
    Pace m_pace = Pace::tracking;
    Seconds m_lastChange{0};
    Subscription m_windowsChanged;
    Subscription m_screensChanged;
    /// The look at once after a rest, in front of the repeated ones.
    Timer m_firstLook;
    Timer m_trackingTimer;
};

} // namespace kestrove
