#include "Platform/X11/WindowIdentity/ClientList.h"
#include "Tests/X11/Desktop/X11Fixture.h"

#include <algorithm>

namespace kestrove::x11 {
namespace {

using Windows = std::vector<xcb_window_t>;

class ClientListTest : public X11Fixture {
protected:
    explicit ClientListTest(test::WindowManager manager = test::WindowManager::none)
        : X11Fixture(manager) {}

    Windows listed() {
        Windows windows;
        const auto clients = readClientList(*connection);
        for (const auto& client : clients.value_or(std::vector<ClientWindow>()))
            windows.push_back(client.window);
        return windows;
    }
};

TEST_F(ClientListTest, WithoutAWindowManagerIsWhatIsMappedFrontToBack) {
    EXPECT_EQ(listed(), Windows());
    const auto back = makeWindow({});
    const auto hidden = makeWindow({.mapped = false});
    const auto front = makeWindow({});
    const auto menu = makeWindow({.overrideRedirect = true});
    EXPECT_EQ(listed(), (Windows{menu->id(), front->id(), back->id()}));
    back->raise();
    EXPECT_EQ(listed(), (Windows{back->id(), menu->id(), front->id()}));
    front->destroy();
    EXPECT_EQ(listed(), (Windows{back->id(), menu->id()}));
}

TEST_F(ClientListTest, LeavesOutWindowsWithoutAPicture) {
    const auto window = makeWindow({});
    auto* const server = desktop.connection();
    const auto inputOnly = xcb_generate_id(server);
    xcb_create_window(server, 0, inputOnly, desktop.root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(server, inputOnly);
    ASSERT_EQ(xcb_request_check(server, xcb_map_window_checked(server, inputOnly)), nullptr);
    EXPECT_EQ(listed(), (Windows{window->id()}));
}

TEST_F(ClientListTest, IsAbsentOnceTheConnectionIsLost) {
    ASSERT_TRUE(readClientList(*connection));
    loseConnection();
    EXPECT_FALSE(readClientList(*connection));
}

TEST_F(ClientListTest, FindsTheFocusWithoutAWindowManager) {
    const auto window = makeWindow({});
    EXPECT_EQ(readActiveWindow(*connection), XCB_WINDOW_NONE);
    auto* const server = desktop.connection();
    ASSERT_EQ(
        xcb_request_check(server, xcb_set_input_focus_checked(server, XCB_INPUT_FOCUS_PARENT,
                                                              window->id(), XCB_CURRENT_TIME)),
        nullptr);
    EXPECT_EQ(readActiveWindow(*connection), window->id());
}

class ManagedClientListTest : public ClientListTest,
                              public testing::WithParamInterface<test::WindowManager> {
protected:
    ManagedClientListTest()
        : ClientListTest(GetParam()) {}

    /// Window managers have windows of their own, override-redirect ones among them.
    Windows listedOf(const Windows& ours) {
        Windows windows = listed();
        std::erase_if(windows,
                      [&](const auto each) { return std::ranges::find(ours, each) == ours.end(); });
        return windows;
    }
};

TEST_P(ManagedClientListTest, OrdersClientsAndPopUpsAsTheyAreStacked) {
    const auto back = makeWindow({});
    const auto front = makeWindow({});
    const auto menu = makeWindow({.overrideRedirect = true});
    const Windows ours{back->id(), front->id(), menu->id()};
    EXPECT_TRUE(loop.spinUntil(
        [&] { return listedOf(ours) == Windows{menu->id(), front->id(), back->id()}; }));
    back->raise();
    EXPECT_TRUE(loop.spinUntil([&] { return listedOf(ours).back() == front->id(); }));
}

TEST_P(ManagedClientListTest, NamesClientsNotTheirFrames) {
    const auto window = makeWindow({});
    ASSERT_TRUE(loop.spinUntil([&] { return listedOf({window->id()}).size() == 1; }));
    const auto clients = readClientList(*connection);
    for (const auto& client : *clients) {
        EXPECT_NE(client.topLevel, XCB_WINDOW_NONE);
        const auto isListed = [&](const ClientWindow& other) {
            return other.window == client.topLevel;
        };
        if (client.window == window->id()) {
            EXPECT_NE(client.topLevel, window->id());
            EXPECT_TRUE(std::ranges::none_of(*clients, isListed));
        }
    }
}

TEST_P(ManagedClientListTest, FindsTheActiveWindow) {
    const auto first = makeWindow({});
    const auto second = makeWindow({.geometry = {500, 300, 200, 150}});
    EXPECT_TRUE(loop.spinUntil([&] {
        const auto active = readActiveWindow(*connection);
        return active == first->id() || active == second->id();
    }));
}

TEST_P(ManagedClientListTest, DoesNotBelieveAWindowManagerThatHasDied) {
    const auto window = makeWindow({});
    ASSERT_TRUE(loop.spinUntil([&] { return listedOf({window->id()}).size() == 1; }));
    desktop.stopWindowManager();
    const auto later = makeWindow({});
    EXPECT_TRUE(loop.spinUntil([&] { return listed() == Windows{later->id(), window->id()}; }));
}

INSTANTIATE_TEST_SUITE_P(With, ManagedClientListTest,
                         testing::Values(test::WindowManager::openbox, test::WindowManager::xfwm4),
                         [](const auto& tested) {
                             return tested.param == test::WindowManager::openbox ? "openbox"
                                                                                 : "xfwm4";
                         });

} // namespace
} // namespace kestrove::x11
