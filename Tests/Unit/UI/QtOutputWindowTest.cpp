#include "UI/OutputWindow/QtOutputWindow.h"

#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Tests/Support/QtSpin.h"
#include "Tests/Support/ScriptedDesktop/ScriptedScreens.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QResizeEvent>
#include <QScreen>
#include <QWindow>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <optional>
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

/// Qt's own platform gives a window the size that it is asked for at once. Here it does so later.
class BusyWindowManager final : public QObject {
public:
    explicit BusyWindowManager(QWindow& window)
        : m_window(window) {
        window.installEventFilter(this);
    }

    /// Does what it was asked for last.
    void comply(const QSize& size) {
        m_given = size;
        QCoreApplication::processEvents();
    }
    /// What it makes of the window next, of its own or because the user pulls at an edge.
    void resize(const QSize& size) {
        QCoreApplication::processEvents(); // what it was asked for before is held back
        m_given = size;
        m_window.resize(size);
        QCoreApplication::processEvents();
    }

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        return event->type() == QEvent::Resize && event->spontaneous() &&
               static_cast<QResizeEvent*>(event)->size() != m_given;
    }

private:
    QWindow& m_window;
    QSize m_given;
};

/// A window of 420 by 260 points that was asked to be one of 500 by 300; 4 of each are decoration.
class QtOutputWindowUnderABusyWindowManager : public QtOutputWindowTest {
protected:
    QtOutputWindowUnderABusyWindowManager()
        : window(make({0, 0, 300, 200})) {
        showWithDecorations(*window);
        window->setFrame({60, 70, 420, 260}, Redisplay::yes);
        QCoreApplication::processEvents();
        loop.advance(Seconds(3));
        manager.emplace(*window->widget().windowHandle());
        ended = window->onLiveResizeEnded([this] { ++resizesByTheUser; });
        window->setFrame(asked, Redisplay::yes);
    }

    const Rect asked{60, 70, 500, 300};
    std::unique_ptr<QtOutputWindow> window;
    std::optional<BusyWindowManager> manager;
    Subscription ended;
    int resizesByTheUser = 0;
};

TEST_F(QtOutputWindowUnderABusyWindowManager, KeepsItsFrameWhateverComesBeforeWhatWasAskedFor) {
    // First it applies the new aspect ratio to the old size.
    loop.advance(Seconds(0.8));
    manager->resize({416, 250});
    EXPECT_EQ(window->widget().size(), QSize(416, 250));
    loop.advance(Seconds(0.6));
    EXPECT_EQ(window->frame(), asked);
    EXPECT_EQ(resizesByTheUser, 0);
    manager->resize({496, 296});
    loop.advance(Seconds(3));
    EXPECT_EQ(window->frame(), asked);
    EXPECT_EQ(resizesByTheUser, 0);
}

TEST_F(QtOutputWindowUnderABusyWindowManager, TakesEverySizeAfterTheOneAskedForAsTheUsers) {
    loop.advance(Seconds(0.1));
    manager->comply({496, 296});
    manager->resize({446, 276});
    EXPECT_EQ(resizesByTheUser, 0) << "before the hand rests";
    loop.advance(Seconds(0.4));
    EXPECT_EQ(resizesByTheUser, 1);
    EXPECT_EQ(window->frame().size(), Size(450, 280));
}

TEST_F(QtOutputWindowUnderABusyWindowManager, FitsTheNextSourceIntoWhatTheUserHasJustMadeOfIt) {
    manager->comply({496, 296});
    manager->resize({446, 276});
    window->setContentAspectRatio({16, 9});
    EXPECT_EQ(resizesByTheUser, 1);
    loop.advance(Seconds(1));
    EXPECT_EQ(resizesByTheUser, 1);
}

TEST_F(QtOutputWindowUnderABusyWindowManager, TakesNoAnswerToAnEarlierRequestAsTheUsers) {
    // The size was asked for twice, and another one in between.
    manager->comply({496, 296});
    manager->resize({496, 259});
    loop.advance(Seconds(0.1));
    manager->resize({496, 296});
    loop.advance(Seconds(3));
    EXPECT_EQ(resizesByTheUser, 0);
    EXPECT_EQ(window->frame(), asked);
}

TEST_F(QtOutputWindowUnderABusyWindowManager, TakesNoSizeAsTheUsersWhileItIsParked) {
    manager->comply({496, 296});
    window->setAllowsOffscreenPositioning(true);
    window->setFrame(asked, Redisplay::yes);
    loop.advance(Seconds(3));
    manager->resize({446, 276});
    loop.advance(Seconds(0.4));
    manager->resize({496, 296});
    EXPECT_EQ(resizesByTheUser, 0);
    EXPECT_EQ(window->frame(), asked);
}

TEST_F(QtOutputWindowUnderABusyWindowManager, TakesASizeThatComesLateAsTheUsers) {
    loop.advance(Seconds(2.1));
    manager->resize({446, 276});
    loop.advance(Seconds(0.4));
    EXPECT_EQ(resizesByTheUser, 1);
    EXPECT_EQ(window->frame().size(), Size(450, 280));
}

} // namespace
} // namespace kestrove
