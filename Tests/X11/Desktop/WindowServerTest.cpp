#include "Platform/X11/WindowServer.h"
#include "Platform/X11/ScreenRecordingAccess.h"
#include "Tests/X11/Desktop/X11Fixture.h"

#include <unistd.h>

namespace kestrove::x11 {
namespace {

class WindowServerTest : public X11Fixture {
protected:
    std::vector<WindowID> numbers(WindowListOptions options) {
        std::vector<WindowID> result;
        const auto list = windowServer.windowList(options);
        for (const auto& row : list.value_or(std::vector<WindowDescription>()))
            result.push_back(row.windowNumber.value_or(0));
        return result;
    }

    MonitorLayout layout{*connection};
    WindowServer windowServer{*connection, layout};
};

TEST_F(WindowServerTest, ListsTheWindowsFrontToBack) {
    const auto back = makeWindow({.geometry = {300, 200, 400, 250}, .opacity = 0.5});
    const auto front = makeWindow({.overrideRedirect = true, .processIdentifier = 4711});
    const auto list = windowServer.windowList(WindowListOptions::all);
    ASSERT_TRUE(list);
    ASSERT_EQ(list->size(), 2U);
    const auto& first = list->front();
    EXPECT_EQ(first.windowNumber, front->id());
    EXPECT_EQ(first.ownerProcessID, 4711);
    EXPECT_EQ(first.layer, 101);
    EXPECT_EQ(first.alpha, 1);
    const auto& second = list->back();
    EXPECT_EQ(second.windowNumber, back->id());
    EXPECT_EQ(second.ownerProcessID, getpid());
    EXPECT_EQ(second.layer, 0);
    EXPECT_NEAR(*second.alpha, 0.5, 1e-6);
    EXPECT_EQ(second.bounds, (Rect{300, 200, 400, 250}));
}

TEST_F(WindowServerTest, MeasuresFromTheMainScreen) {
    const auto window = makeWindow({.geometry = {1300, 200, 400, 250}});
    desktop.server().removeMonitor("LEFT");
    ASSERT_TRUE(loop.spinUntil([&] { return layout.monitors().size() == 1; }));
    const auto list = windowServer.windowList(WindowListOptions::all);
    EXPECT_EQ(list->front().bounds, (Rect{20, 200, 400, 250}));
}

TEST_F(WindowServerTest, LeavesOutTheDesktopItselfWhenAsked) {
    const auto wallpaper = makeWindow({});
    const auto window = makeWindow({});
    const auto panel = makeWindow({});
    wallpaper->setProperty("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                           {wallpaper->atom("_NET_WM_WINDOW_TYPE_DESKTOP")});
    panel->setProperty("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                       {panel->atom("_NET_WM_WINDOW_TYPE_DOCK")});
    EXPECT_EQ(numbers(WindowListOptions::all),
              (std::vector{panel->id(), window->id(), wallpaper->id()}));
    EXPECT_EQ(numbers(WindowListOptions::excludeDesktopElements),
              (std::vector{panel->id(), window->id()}));
}

TEST_F(WindowServerTest, LeavesOutWhatIsNotOnScreenWhenAsked) {
    const auto window = makeWindow({});
    const auto minimised = makeWindow({});
    minimised->setProperty("_NET_WM_STATE", XCB_ATOM_ATOM,
                           {minimised->atom("_NET_WM_STATE_HIDDEN")});
    EXPECT_EQ(numbers(WindowListOptions::all), (std::vector{minimised->id(), window->id()}));
    EXPECT_EQ(numbers(WindowListOptions::onScreenOnly), (std::vector{window->id()}));
    EXPECT_EQ(numbers(WindowListOptions::onScreenOnly | WindowListOptions::excludeDesktopElements),
              (std::vector{window->id()}));
}

TEST_F(WindowServerTest, HasNoListWhileTheConnectionIsLost) {
    EXPECT_TRUE(windowServer.windowList(WindowListOptions::all));
    loseConnection();
    EXPECT_FALSE(windowServer.windowList(WindowListOptions::all));
    ASSERT_TRUE(connection->reopen());
    EXPECT_TRUE(windowServer.windowList(WindowListOptions::all));
}

class ScreenRecordingAccessTest : public X11Fixture {
protected:
    ScreenRecordingAccess access{*connection};
};

TEST_F(ScreenRecordingAccessTest, IsGivenWhileThereIsAConnection) {
    EXPECT_TRUE(access.preflight());
    EXPECT_TRUE(access.request());
    access.openPreferences();
    loseConnection();
    EXPECT_FALSE(access.preflight());
    EXPECT_TRUE(access.request());
    EXPECT_TRUE(access.preflight());
}

TEST_F(ScreenRecordingAccessTest, IsRefusedOnceTheServerHasGone) {
    desktop.server().kill();
    EXPECT_TRUE(loop.spinUntil([&] { return !access.preflight(); }));
    EXPECT_FALSE(access.request());
    EXPECT_FALSE(access.preflight());
}

} // namespace
} // namespace kestrove::x11
