#include "Tests/Support/XServer/XDesktop.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/Reply.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <map>
#include <string>

#include <fmt/core.h>
#include <gtest/gtest.h>
#include <xcb/randr.h>

namespace kestrove::test {

namespace {

std::map<std::string, std::string> monitorsOf(XServer& server) {
    std::map<std::string, std::string> result;
    const auto cookie = xcb_randr_get_monitors(server.connection(), server.root(), 1);
    const Reply reply(xcb_randr_get_monitors_reply(server.connection(), cookie, nullptr));
    auto each = xcb_randr_get_monitors_monitors_iterator(reply.get());
    for (; each.rem > 0; xcb_randr_monitor_info_next(&each)) {
        const auto nameCookie = xcb_get_atom_name(server.connection(), each.data->name);
        const Reply name(xcb_get_atom_name_reply(server.connection(), nameCookie, nullptr));
        result[std::string(xcb_get_atom_name_name(name.get()),
                           static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get())))] =
            fmt::format("{}x{}+{}+{}", each.data->width, each.data->height, each.data->x,
                        each.data->y);
    }
    return result;
}

using Places = std::map<std::string, std::string>;

} // namespace

TEST(XDesktopTest, serverHasTwoMonitorsThatCanBePulledAndPlugged) {
    XDesktop desktop;
    XServer& server = desktop.server();
    EXPECT_EQ(server.screen()->width_in_pixels, 2560);
    EXPECT_EQ(server.screen()->height_in_pixels, 800);
    EXPECT_EQ(monitorsOf(server), (Places{{"LEFT", "1280x800+0+0"}, {"RIGHT", "1280x800+1280+0"}}));
    server.removeMonitor("RIGHT");
    EXPECT_EQ(monitorsOf(server), (Places{{"LEFT", "1280x800+0+0"}}));
    server.setMonitor({"RIGHT", {1280, 0, 640, 480}});
    EXPECT_EQ(monitorsOf(server), (Places{{"LEFT", "1280x800+0+0"}, {"RIGHT", "640x480+1280+0"}}));
    server.removeMonitor("LEFT"); // the one with the server's real output
    EXPECT_EQ(monitorsOf(server), (Places{{"RIGHT", "640x480+1280+0"}}));
    server.setMonitor({"LEFT", {0, 0, 1280, 800}});
    EXPECT_EQ(monitorsOf(server), (Places{{"LEFT", "1280x800+0+0"}, {"RIGHT", "640x480+1280+0"}}));
}

TEST(XDesktopTest, serversDoNotShareANumber) {
    const XDesktop first;
    const XDesktop second;
    EXPECT_NE(first.displayName(), second.displayName());
}

TEST(XDesktopTest, pointerMovesEverywhere) {
    XDesktop desktop;
    for (const auto& [x, y] : {std::pair(3, 4), std::pair(2559, 799)}) {
        desktop.server().movePointer(x, y);
        const auto cookie = xcb_query_pointer(desktop.connection(), desktop.root());
        const Reply reply(xcb_query_pointer_reply(desktop.connection(), cookie, nullptr));
        EXPECT_EQ(reply->root_x, x);
        EXPECT_EQ(reply->root_y, y);
    }
}

TEST(XDesktopTest, killedServerBreaksItsConnections) {
    XDesktop desktop;
    TestWindow window(desktop.displayName(), {});
    desktop.server().kill();
    EXPECT_TRUE(waitUntil([&] {
        xcb_flush(desktop.connection());
        sync(desktop.connection());
        return xcb_connection_has_error(desktop.connection()) != 0;
    }));
    sync(window.connection());
    EXPECT_NE(xcb_connection_has_error(window.connection()), 0);
}

class WindowManagerTest : public testing::TestWithParam<WindowManager> {};

TEST_P(WindowManagerTest, managesWindowsWhereTheyWantToBe) {
    XDesktop desktop({.windowManager = GetParam()});
    const TestWindow window(desktop.displayName(), {.geometry = {300, 200, 320, 240}});
    EXPECT_TRUE(waitUntil([&] {
        return desktop.server().propertyItem(desktop.root(), "_NET_CLIENT_LIST") == window.id();
    }));
    EXPECT_TRUE(waitUntil([&] {
        const xcb_rectangle_t place = window.geometry();
        return std::array<int, 4>{place.x, place.y, place.width, place.height} ==
               std::array<int, 4>{300, 200, 320, 240};
    }));
}

TEST_P(WindowManagerTest, stopsAndStartsAgain) {
    XDesktop desktop({.windowManager = GetParam()});
    desktop.stopWindowManager();
    desktop.startWindowManager(GetParam());
    const TestWindow window(desktop.displayName(), {});
    EXPECT_TRUE(waitUntil([&] {
        return desktop.server().propertyItem(desktop.root(), "_NET_CLIENT_LIST") == window.id();
    }));
}

INSTANTIATE_TEST_SUITE_P(All, WindowManagerTest,
                         testing::Values(WindowManager::openbox, WindowManager::xfwm4),
                         [](const auto& manager) {
                             return manager.param == WindowManager::openbox ? "openbox" : "xfwm4";
                         });

TEST(XDesktopTest, compositorOwnsTheSelectionUntilItStops) {
    XDesktop desktop({.compositor = Compositor::picom});
    const auto owner = [&] {
        const auto cookie =
            xcb_get_selection_owner(desktop.connection(), desktop.server().atom("_NET_WM_CM_S0"));
        return Reply(xcb_get_selection_owner_reply(desktop.connection(), cookie, nullptr))->owner;
    };
    EXPECT_NE(owner(), static_cast<xcb_window_t>(XCB_WINDOW_NONE));
    desktop.stopCompositor();
    EXPECT_TRUE(waitUntil([&] { return owner() == XCB_WINDOW_NONE; }));
}

TEST(XDesktopTest, programsReachTheOwnBusAndOnlyIt) {
    XDesktop desktop({.sessionBus = SessionBus::own});
    const auto list =
        desktop.start({"dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus",
                       "/", "org.freedesktop.DBus.GetId"});
    ASSERT_TRUE(list->waitForExit(patience));
    EXPECT_EQ(list->exitCode(), 0) << list->logTail();

    XDesktop other;
    const auto lost =
        other.start({"dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
                     "org.freedesktop.DBus.GetId"});
    ASSERT_TRUE(lost->waitForExit(patience));
    EXPECT_NE(lost->exitCode(), 0);
}

TEST(XDesktopTest, nothingIsLeftBehind) {
    std::filesystem::path folder;
    pid_t server = 0;
    {
        XDesktop desktop({.windowManager = WindowManager::xfwm4});
        folder = desktop.folder();
        server = desktop.server().process().processIdentifier();
        ASSERT_EQ(::kill(server, 0), 0);
    }
    EXPECT_EQ(::kill(server, 0), -1);
    EXPECT_EQ(errno, ESRCH);
    EXPECT_FALSE(std::filesystem::exists(folder));
}

} // namespace kestrove::test
