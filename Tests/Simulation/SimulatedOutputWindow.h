#pragma once

#include "Async/Signal.h"
#include "Platform/Simulated/SimulatedDesktop.h"
#include "UI/Composer/OutputContainerView.h"
#include "UI/OutputWindow/OutputWindow.h"

#include <optional>

namespace kestrove::simulation {

/// The content view of the output window, as a viewer of the call sees it: a layer or the
/// placeholder.
class SimulatedContainerView final : public OutputContainerView {
public:
    explicit SimulatedContainerView(SimulatedDesktop& desktop)
        : m_desktop(desktop)
        , m_view(desktop.views().makeView()) {}
    ~SimulatedContainerView() override;

    void showContent(ContainerView& content) override;
    void showPlaceholder() override;

    [[nodiscard]] bool showsContent() const { return m_content != nullptr; }

private:
    SimulatedDesktop& m_desktop;
    NativeViewHandle m_view;
    ContainerView* m_content = nullptr;
};

/// The output window: a window of ours on the simulated desktop, which a capture could see.
class SimulatedOutputWindow final : public OutputWindow {
public:
    SimulatedOutputWindow(SimulatedDesktop& desktop, const Rect& content);
    ~SimulatedOutputWindow() override;

    std::int64_t windowNumber() const override { return m_window; }
    Rect frame() const override { return m_frame; }
    void setFrame(const Rect& frame, Redisplay redisplay) override;
    Rect contentRect(const Rect& frame) const override;
    Rect frameRect(const Rect& content) const override;
    void setAllowsOffscreenPositioning(bool /*allows*/) override {}
    bool isMiniaturized() const override { return m_isMiniaturized; }
    void deminiaturize() override { m_isMiniaturized = false; }
    bool isFullScreen() const override { return m_isFullScreen; }
    void toggleFullScreen() override { m_isFullScreen = !m_isFullScreen; }
    void makeKeyAndOrderFront() override;
    void orderFrontRegardless() override;
    void setTitle(std::string_view title) override;
    void setContentView(OutputContainerView& /*view*/) override {}
    void setLevel(WindowLevel level) override { m_level = level; }
    void setCollectionBehavior(CollectionBehavior /*behavior*/) override {}
    void setMinimumSize(Size /*frameSize*/) override {}
    void setContentAspectRatio(Size /*ratio*/) override {}
    void center() override {}
    Subscription onLiveResizeEnded(std::function<void()> callback) override {
        return m_liveResizeEnded.subscribe(std::move(callback));
    }
    /// Its decorations stay as they are.
    Subscription onDecorationsChanged(std::function<void()> /*callback*/) override { return {}; }

    /// The user drags the window by its edge and lets go.
    void resizeByHand(const Rect& frame);
    void miniaturize() { m_isMiniaturized = true; }
    [[nodiscard]] WindowLevel level() const { return m_level; }

private:
    void show();

    SimulatedDesktop& m_desktop;
    Rect m_frame;
    WindowID m_window;
    WindowLevel m_level = WindowLevel::normal;
    bool m_isMiniaturized = false;
    bool m_isFullScreen = false;
    Signal<> m_liveResizeEnded;
};

} // namespace kestrove::simulation
