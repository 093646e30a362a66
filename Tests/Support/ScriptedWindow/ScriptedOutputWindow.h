#pragma once

#include "Async/Signal.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"
#include "UI/OutputWindow/OutputWindow.h"

#include <optional>
#include <string>
#include <utility>

namespace kestrove {

/// A window in memory, with a title bar of 30 points and borders of 2. Logs what is done to it.
class ScriptedOutputWindow final : public OutputWindow {
public:
    double titleBar = 30;
    static constexpr double border = 2;

    ScriptedOutputWindow(CallLog& calls, const Rect& content, WindowStyle windowStyle)
        : current(frameRect(content))
        , style(windowStyle)
        , m_calls(calls) {}

    std::int64_t windowNumber() const override { return number; }
    Rect frame() const override { return current; }
    void setFrame(const Rect& frame, Redisplay redisplay) override {
        current = frame;
        m_calls.add(redisplay == Redisplay::yes ? "setFrame redisplay" : "setFrame");
    }
    Rect contentRect(const Rect& frame) const override {
        return {frame.x + border, frame.y + border, frame.width - 2 * border,
                frame.height - border - titleBar};
    }
    Rect frameRect(const Rect& content) const override {
        return {content.x - border, content.y - border, content.width + 2 * border,
                content.height + border + titleBar};
    }
    void setAllowsOffscreenPositioning(bool allows) override {
        allowsOffscreenPositioning = allows;
        m_calls.add(allows ? "allow offscreen" : "forbid offscreen");
    }
    bool isMiniaturized() const override { return miniaturized; }
    void deminiaturize() override {
        miniaturized = false;
        m_calls.add("deminiaturize");
    }
    bool isFullScreen() const override { return fullScreen; }
    void toggleFullScreen() override {
        fullScreen = !fullScreen;
        m_calls.add("toggleFullScreen");
    }
    void makeKeyAndOrderFront() override { m_calls.add("makeKeyAndOrderFront"); }
    void orderFrontRegardless() override { m_calls.add("orderFrontRegardless"); }
    void setTitle(std::string_view text) override { title = text; }
    void setContentView(OutputContainerView& view) override { contentView = &view; }
    void setLevel(WindowLevel newLevel) override { level = newLevel; }
    void setCollectionBehavior(CollectionBehavior newBehavior) override { behavior = newBehavior; }
    void setMinimumSize(Size frameSize) override { minimumSize = frameSize; }
    void setContentAspectRatio(Size ratio) override { aspectRatio = ratio; }
    void center() override { m_calls.add("center"); }
    Subscription onDecorationsChanged(std::function<void()> callback) override {
        return decorationsChanged.subscribe(std::move(callback));
    }
    Subscription onLiveResizeEnded(std::function<void()> callback) override {
        return liveResizeEnded.subscribe(std::move(callback));
    }

    [[nodiscard]] Size contentSize() const { return contentRect(current).size(); }

    Rect current;
    WindowStyle style;
    std::int64_t number = 17;
    bool allowsOffscreenPositioning = false;
    bool miniaturized = false;
    bool fullScreen = false;
    std::string title;
    OutputContainerView* contentView = nullptr;
    std::optional<WindowLevel> level;
    std::optional<CollectionBehavior> behavior;
    std::optional<Size> minimumSize;
    std::optional<Size> aspectRatio;
    Signal<> decorationsChanged;
    Signal<> liveResizeEnded;

private:
    CallLog& m_calls;
};

} // namespace kestrove
