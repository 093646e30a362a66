#pragma once

#include "Async/Subscription.h"
#include "Desktop/Geometry.h"
#include "UI/Composer/OutputContainerView.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

namespace kestrove {

/// What a window offers to the user; joined with `|`.
enum class WindowStyle : std::uint32_t {
    titled = 1,
    closable = 2,
    miniaturizable = 4,
    resizable = 8
};

[[nodiscard]] constexpr WindowStyle operator|(WindowStyle a, WindowStyle b) {
    return static_cast<WindowStyle>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}

[[nodiscard]] constexpr bool has(WindowStyle styles, WindowStyle style) {
    return (static_cast<std::uint32_t>(styles) & static_cast<std::uint32_t>(style)) != 0;
}

/// How a window behaves among workspaces; joined with `|`.
enum class CollectionBehavior : std::uint32_t {
    /// The window is on every workspace.
    canJoinAllSpaces = 0x001,
    /// The desktop offers no full screen for it.
    fullScreenNone = 0x200,
};

[[nodiscard]] constexpr CollectionBehavior operator|(CollectionBehavior a, CollectionBehavior b) {
    return static_cast<CollectionBehavior>(static_cast<std::uint32_t>(a) |
                                           static_cast<std::uint32_t>(b));
}

enum class WindowLevel : std::uint8_t {
    normal = 0,
    /// Above all normal windows.
    floating = 3,
};

enum class Redisplay : std::uint8_t { no, yes };

/// The output window as its controller sees it: one native top-level window, which other programs
/// can capture. Made unseen; closing it only takes it away from the desktop, `orderFront…` brings
/// it back.
///
/// Frames are in points, screen coordinates, and include the title bar and borders; a content
/// rectangle is what they leave. No frame change is animated.
///
/// Thread: main. The callback comes from the main loop.
class OutputWindow {
public:
    OutputWindow() = default;
    OutputWindow(const OutputWindow&) = delete;
    OutputWindow& operator=(const OutputWindow&) = delete;
    virtual ~OutputWindow() = default;

    /// The number that other programs and the capture service know the window by. It is the same
    /// through hiding, closing and showing. Below 1 when the window has none.
    [[nodiscard]] virtual std::int64_t windowNumber() const = 0;

    /// Where the window is; after `setFrame` the frame that was set, until the desktop is known to
    /// have moved or resized the window otherwise.
    [[nodiscard]] virtual Rect frame() const = 0;
    virtual void setFrame(const Rect& frame, Redisplay redisplay) = 0;

    /// What the decorations leave of `frame`, and the frame that leaves `content`. Arithmetic of
    /// this window's decorations only.
    [[nodiscard]] virtual Rect contentRect(const Rect& frame) const = 0;
    [[nodiscard]] virtual Rect frameRect(const Rect& content) const = 0;

    /// While true, a frame outside every screen is taken as it is; while false, the desktop may
    /// keep the window on a screen. False at first.
    virtual void setAllowsOffscreenPositioning(bool allows) = 0;

    [[nodiscard]] virtual bool isMiniaturized() const = 0;
    virtual void deminiaturize() = 0;
    [[nodiscard]] virtual bool isFullScreen() const = 0;
    virtual void toggleFullScreen() = 0;

    /// Shows the window, also a closed or miniaturised one, above the others of its level, with the
    /// keyboard focus.
    virtual void makeKeyAndOrderFront() = 0;
    /// Shows the window above the others of its level whichever application is active, and leaves
    /// the keyboard focus alone.
    virtual void orderFrontRegardless() = 0;

    virtual void setTitle(std::string_view title) = 0;
    /// Fills the content rectangle with `view` and follows its size. `view` is not owned.
    virtual void setContentView(OutputContainerView& view) = 0;
    virtual void setLevel(WindowLevel level) = 0;
    virtual void setCollectionBehavior(CollectionBehavior behavior) = 0;
    /// The smallest frame that the user can give the window.
    virtual void setMinimumSize(Size frameSize) = 0;
    /// What user resizing keeps the content rectangle's sides at.
    virtual void setContentAspectRatio(Size ratio) = 0;
    /// Puts the window into the middle of its screen.
    virtual void center() = 0;

    /// The decorations have become others, as on a desktop that tells them only once the window is
    /// there. The frame is what it was, and leaves another content rectangle.
    [[nodiscard]] virtual Subscription onDecorationsChanged(std::function<void()> callback) = 0;
    /// The user has let go after resizing the window. A frame set by the program, or by the desktop
    /// alone, does not count.
    [[nodiscard]] virtual Subscription onLiveResizeEnded(std::function<void()> callback) = 0;
};

/// Makes a window, unseen, with `contentRect` as its content rectangle; null when the desktop
/// refuses.
using MakeOutputWindow =
    std::function<std::unique_ptr<OutputWindow>(const Rect& contentRect, WindowStyle style)>;

} // namespace kestrove
