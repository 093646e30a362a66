#pragma once

#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Tests/Support/ScriptedDesktop/ScriptedApplication.h"
#include "Tests/Support/ScriptedDesktop/ScriptedScreens.h"
#include "Tests/Support/ScriptedWindow/ScriptedOutputWindow.h"
#include "UI/OutputWindow/OutputWindowController.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace kestrove {

using Calls = std::vector<std::string>;

/// A controller over a window in memory. The main screen, display 1, is 2560 by 1440 with a panel
/// of 40 points on top; display 2, right of it, is 1920 by 1080.
class OutputWindowFixture : public testing::Test {
protected:
    class BlankView final : public OutputContainerView {
    public:
        void showContent(ContainerView&) override {}
        void showPlaceholder() override {}
    };

    OutputWindowFixture() {
        screens.add({0, 0, 2560, 1440}, 1);
        screens.list[0].visibleFrame.height = 1400;
        screens.add({2560, 100, 1920, 1080}, 2);
    }

    void makeController(OutputWindowOptions options = {}) {
        controller = std::make_unique<OutputWindowController>(
            view, options,
            OutputWindowPlatform{
                loop, screens, application,
                [this](const Rect& content, WindowStyle style) -> std::unique_ptr<OutputWindow> {
                    if (!canMakeWindows)
                        return nullptr;
                    auto made = std::make_unique<ScriptedOutputWindow>(calls, content, style);
                    made->current.x = initialOrigin.x;
                    made->current.y = initialOrigin.y;
                    window = made.get();
                    return made;
                }});
    }
    /// A controller whose window lies at `frame`, with nothing in the log.
    void makeControllerAt(const Rect& frame) {
        makeController();
        window->current = frame;
        calls.clear();
    }
    void resizeByUser(const Rect& frame) {
        window->current = frame;
        window->liveResizeEnded.emit();
    }
    /// The frame around a content of `size` with its centre at `center`.
    Rect frameAround(Point center, Size size) const {
        const auto frame = window->frameRect({0, 0, size.width, size.height}).size();
        return {center.x - frame.width / 2, center.y - frame.height / 2, frame.width, frame.height};
    }
    bool isOnAnyScreen(const Rect& frame) const {
        return std::ranges::any_of(screens.list, [&](const Screen& screen) {
            return frame.minX() < screen.frame.maxX() && frame.maxX() > screen.frame.minX() &&
                   frame.minY() < screen.frame.maxY() && frame.maxY() > screen.frame.minY();
        });
    }

    SimulatedMainLoop loop;
    CallLog calls;
    ScriptedScreens screens;
    ScriptedApplication application;
    BlankView view;
    Point initialOrigin{300, 200};
    bool canMakeWindows = true;
    ScriptedOutputWindow* window = nullptr;
    std::unique_ptr<OutputWindowController> controller;
};

} // namespace kestrove
