#include "Platform/X11/Screens/Screens.h"
#include "Platform/X11/Screens/Coordinates.h"
#include "Platform/X11/Screens/WorkArea.h"
#include "Tests/X11/Desktop/X11Fixture.h"

#include <array>
#include <fmt/format.h>
#include <ostream>

namespace kestrove {
void PrintTo(const Rect& rect, std::ostream* stream) {
    *stream << fmt::format("{}x{}+{}+{}", rect.width, rect.height, rect.x, rect.y);
}
} // namespace kestrove

namespace kestrove::x11 {
namespace {

TEST(CoordinatesTest, HaveTheirOriginsAtTheMainScreen) {
    Monitor left;
    left.rectangle = {0, 200, 1280, 800};
    Monitor main;
    main.rectangle = {1280, 0, 1920, 1200};
    main.isMain = true;
    const std::vector<Monitor> monitors{main, left};
    const Coordinates coordinates(monitors);
    EXPECT_EQ(coordinates.screenRect(toRect(main.rectangle)), (Rect{0, 0, 1920, 1200}));
    EXPECT_EQ(coordinates.screenRect(toRect(left.rectangle)), (Rect{-1280, 200, 1280, 800}));
    EXPECT_EQ(coordinates.windowServerRect(toRect(main.rectangle)), (Rect{0, 0, 1920, 1200}));
    EXPECT_EQ(coordinates.windowServerRect(toRect(left.rectangle)), (Rect{-1280, 200, 1280, 800}));
}

TEST(CoordinatesTest, PutTheCornersOfAScreenInsideIt) {
    Monitor main;
    main.rectangle = {100, 50, 640, 480};
    main.isMain = true;
    const Coordinates coordinates(std::span(&main, 1));
    EXPECT_EQ(coordinates.screenPoint(100, 50), (Point{0, 479}));
    EXPECT_EQ(coordinates.screenPoint(739, 529), (Point{639, 0}));
    const auto frame = coordinates.screenRect(toRect(main.rectangle));
    EXPECT_TRUE(frame.contains(coordinates.screenPoint(100, 50)));
    EXPECT_FALSE(frame.contains(coordinates.screenPoint(100, 49)));
    EXPECT_FALSE(frame.contains(coordinates.screenPoint(100, 530)));
}

class StrutTest : public testing::Test {
protected:
    const Size root{2560, 800};
    const Rect left{0, 0, 1280, 800};
    const Rect right{1280, 0, 1280, 800};
};

TEST_F(StrutTest, CountsOnTheMonitorsThatItsSpanMeets) {
    Strut bottomOfRight;
    bottomOfRight.bottom = 40;
    bottomOfRight.bottomSpan = {1280, 2559};
    const auto struts = std::span(&bottomOfRight, 1);
    EXPECT_EQ(areaWithoutStruts(left, root, struts), left);
    EXPECT_EQ(areaWithoutStruts(right, root, struts), (Rect{1280, 0, 1280, 760}));
}

TEST_F(StrutTest, OfAnInnerEdgeLeavesTheMonitorsBeforeItAlone) {
    Strut panel;
    panel.left = 1280 + 60;
    panel.leftSpan = {0, 799};
    const auto struts = std::span(&panel, 1);
    EXPECT_EQ(areaWithoutStruts(left, root, struts), left);
    EXPECT_EQ(areaWithoutStruts(right, root, struts), (Rect{1340, 0, 1220, 800}));
}

TEST_F(StrutTest, AddsUpOnAllEdges) {
    Strut top;
    top.top = 30;
    top.topSpan = {0, 2559};
    Strut side;
    side.right = 100;
    side.rightSpan = {0, 799};
    const std::vector<Strut> struts{top, side};
    EXPECT_EQ(areaWithoutStruts(left, root, struts), (Rect{0, 30, 1280, 770}));
    EXPECT_EQ(areaWithoutStruts(right, root, struts), (Rect{1280, 30, 1180, 770}));
}

test::TestWindow::Options panelOnTheRight() {
    return {.geometry = {1280, 760, 1280, 40}, .mapped = false};
}

void makePanel(test::TestWindow& window) {
    window.setProperty("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                       {window.atom("_NET_WM_WINDOW_TYPE_DOCK")});
    window.setProperty("_NET_WM_STRUT_PARTIAL", XCB_ATOM_CARDINAL,
                       {0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 1280, 2559});
    window.show();
}

class ScreensTest : public X11Fixture {
protected:
    MonitorLayout layout{*connection};
    Screens screens{*connection, layout};
};

TEST_F(ScreensTest, DescribesTheMonitors) {
    const auto list = screens.screens();
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].frame, (Rect{0, 0, 1280, 800}));
    EXPECT_EQ(list[1].frame, (Rect{1280, 0, 1280, 800}));
    EXPECT_EQ(list[0].visibleFrame, list[0].frame);
    EXPECT_EQ(list[1].displayID, layout.monitors()[1].id);
    EXPECT_EQ(list[1].localizedName, "RIGHT");
    EXPECT_EQ(list[1].backingScaleFactor, 1);
    EXPECT_TRUE(list[0].isMain);
    EXPECT_FALSE(list[1].isMain);
}

TEST_F(ScreensTest, TellOnceOfAMonitorThatComesAndOneThatGoes) {
    int changes = 0;
    const auto subscription = screens.onChanged([&] { ++changes; });
    desktop.server().setMonitor({"BELOW", {0, 400, 640, 400}});
    EXPECT_TRUE(loop.spinUntil([&] { return changes > 0; }));
    settle();
    EXPECT_EQ(changes, 1);
    ASSERT_EQ(screens.screens().size(), 3U);
    EXPECT_EQ(screens.screens()[2].frame, (Rect{0, 0, 640, 400}));
    desktop.server().removeMonitor("BELOW");
    EXPECT_TRUE(loop.spinUntil([&] { return changes > 1; }));
    settle();
    EXPECT_EQ(changes, 2);
}

TEST_F(ScreensTest, AreNewAsSoonAsTheyAreAskedForButToldFromTheLoop) {
    int changes = 0;
    std::size_t seenBefore = 0;
    const auto later = screens.onChanged([&] { ++changes; });
    const auto asking = layout.changed.subscribe([&] {
        seenBefore = screens.screens().size();
        EXPECT_EQ(changes, 0);
    });
    desktop.server().removeMonitor("RIGHT");
    EXPECT_TRUE(loop.spinUntil([&] { return changes == 1; }));
    EXPECT_EQ(seenBefore, 1U);
}

TEST_F(ScreensTest, MayEndInsideTheirOwnCallback) {
    auto doomed = std::make_unique<Screens>(*connection, layout);
    bool wasTold = false;
    const auto subscription = doomed->onChanged([&] {
        wasTold = true;
        doomed.reset();
    });
    desktop.server().removeMonitor("RIGHT");
    EXPECT_TRUE(loop.spinUntil([&] { return wasTold; }));
}

TEST_F(ScreensTest, AreNoneWhileTheConnectionIsLost) {
    int changes = 0;
    const auto subscription = screens.onChanged([&] { ++changes; });
    loseConnection();
    EXPECT_TRUE(loop.spinUntil([&] { return changes == 1; }));
    EXPECT_TRUE(screens.screens().empty());
    ASSERT_TRUE(connection->reopen());
    EXPECT_TRUE(loop.spinUntil([&] { return changes == 2; }));
    EXPECT_EQ(screens.screens().size(), 2U);
}

TEST_F(ScreensTest, KnowPanelsWithoutAWindowManager) {
    const auto panel = makeWindow(panelOnTheRight());
    makePanel(*panel);
    const auto later = Screens(*connection, layout).screens();
    EXPECT_EQ(later[0].visibleFrame, (Rect{0, 0, 1280, 800}));
    EXPECT_EQ(later[1].visibleFrame, (Rect{1280, 40, 1280, 760}));
}

TEST_F(ScreensTest, BelieveTheWindowManagersAreaOfEachMonitor) {
    const auto teller = makeWindow({.mapped = false});
    const std::array<std::uint32_t, 8> areas{0, 32, 1280, 768, 1280, 0, 1280, 800};
    xcb_change_property(teller->connection(), XCB_PROP_MODE_REPLACE, desktop.root(),
                        teller->atom("_GTK_WORKAREAS_D0"), XCB_ATOM_CARDINAL, 32, areas.size(),
                        areas.data());
    xcb_flush(teller->connection());
    EXPECT_TRUE(
        loop.spinUntil([&] { return screens.screens()[0].visibleFrame == Rect{0, 0, 1280, 768}; }));
    EXPECT_EQ(screens.screens()[1].visibleFrame, (Rect{1280, 0, 1280, 800}));
}

class ManagedScreensTest : public X11Fixture {
protected:
    ManagedScreensTest()
        : X11Fixture(test::WindowManager::openbox) {}
    MonitorLayout layout{*connection};
    Screens screens{*connection, layout};
};

TEST_F(ManagedScreensTest, FollowPanelsThatComeAndGo) {
    int changes = 0;
    const auto subscription = screens.onChanged([&] { ++changes; });
    auto panel = makeWindow(panelOnTheRight());
    makePanel(*panel);
    EXPECT_TRUE(loop.spinUntil([&] { return changes == 1; }));
    EXPECT_EQ(screens.screens()[0].visibleFrame, (Rect{0, 0, 1280, 800}));
    EXPECT_EQ(screens.screens()[1].visibleFrame, (Rect{1280, 40, 1280, 760}));
    panel->destroy();
    EXPECT_TRUE(loop.spinUntil([&] { return changes == 2; }));
    EXPECT_EQ(screens.screens()[1].visibleFrame, (Rect{1280, 0, 1280, 800}));
}

} // namespace
} // namespace kestrove::x11
