#include "UI/OutputWindow/QtOutputWindow.h"

#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Tests/Support/QtSpin.h"
#include "Tests/Support/ScriptedDesktop/ScriptedScreens.h"

#include <QGuiApplication>
#include <QScreen>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <utility>

namespace kestrove {
namespace {

constexpr auto style = WindowStyle::titled | WindowStyle::closable | WindowStyle::resizable;

/// On a platform of Qt's own that decorates every window with two pixels around it.
class QtOutputWindowTest : public testing::Test {
protected:
    QtOutputWindowTest() {
        const auto screen = QGuiApplication::primaryScreen()->geometry();
        height = screen.height();
        screens.add({0, 0, static_cast<double>(screen.width()), height}, 1);
    }

    std::unique_ptr<QtOutputWindow> make(const Rect& content) {
        QtOutputWindowSurroundings surroundings{loop, screens, {}, {}};
        return std::make_unique<QtOutputWindow>(std::move(surroundings), content, style);
    }

    void showWithDecorations(QtOutputWindow& window) {
        window.orderFrontRegardless();
        ASSERT_TRUE(spinUntil([&] {
            loop.runUntilIdle();
            return window.frameRect({0, 0, 100, 100}) != Rect(0, 0, 100, 100);
        }));
    }

    SimulatedMainLoop loop;
    ScriptedScreens screens;
    double height = 0;
};

TEST_F(QtOutputWindowTest, OpensAtItsSizeOrFittedIntoTheMainScreen) {
    EXPECT_EQ(make({0, 0, 320, 180})->frame().size(), Size(320, 180));
    const auto fitted = make({0, 0, 10 * height, 5 * height})->frame().size();
    EXPECT_LE(fitted.width, screens.list.front().frame.width);
    EXPECT_NEAR(fitted.width, 2 * fitted.height, 2);
}

TEST_F(QtOutputWindowTest, PutsScreenCoordinatesUpsideDown) {
    const auto window = make({0, 0, 320, 180});
    window->setFrame({30, 40, 300, 200}, Redisplay::yes);
    EXPECT_EQ(window->frame(), Rect(30, 40, 300, 200));
    EXPECT_EQ(window->widget().geometry(), QRect(30, static_cast<int>(height) - 240, 300, 200));
}

TEST_F(QtOutputWindowTest, KeepsAFrameAsItWasSetAlsoWhereItIsNoWholePixel) {
    const auto window = make({0, 0, 320, 180});
    window->setFrame({30.25, 40.5, 300, 200}, Redisplay::yes);
    EXPECT_EQ(window->frame(), Rect(30.25, 40.5, 300, 200));
}

TEST_F(QtOutputWindowTest, HoldsItsDecorationsInTheFrameThatWasSetBeforeTheyWereKnown) {
    const auto window = make({0, 0, 320, 180});
    const Rect frame{60, 70, 320, 180};
    window->setFrame(frame, Redisplay::yes);
    showWithDecorations(*window);
    EXPECT_EQ(window->frame(), frame);
    const auto content = window->contentRect(frame);
    EXPECT_EQ(content, Rect(62, 72, 316, 176));
    EXPECT_EQ(window->frameRect(content), frame);
    EXPECT_EQ(window->widget().size(), QSize(316, 176));
}

TEST_F(QtOutputWindowTest, IsInTheMiddleOfTheMainScreen) {
    const auto window = make({0, 0, 320, 180});
    window->center();
    const auto frame = window->frame();
    const auto middle = screens.list.front().frame.center();
    EXPECT_EQ(frame, Rect(std::floor(middle.x - 160), std::floor(middle.y - 90), 320, 180));
}

} // namespace
} // namespace kestrove
