#include "Platform/X11/WindowIdentity/WindowIdentity.h"
#include "Platform/X11/WindowIdentity/WindowLayer.h"
#include "Tests/X11/Desktop/X11Fixture.h"

#include <unistd.h>
#include <utility>

namespace kestrove::x11 {
namespace {

class WindowIdentityTest : public X11Fixture {
protected:
    explicit WindowIdentityTest(test::WindowManager manager = test::WindowManager::none)
        : X11Fixture(manager) {}

    WindowIdentity identityOf(const test::TestWindow& window) {
        const auto clients = readClientList(*connection);
        for (const auto& identity : readIdentities(*connection, *clients)) {
            if (identity.windowID == window.id())
                return identity;
        }
        ADD_FAILURE() << "the window is not listed";
        return {};
    }
};

TEST_F(WindowIdentityTest, TellsWhatAnOrdinaryWindowIs) {
    const auto window = makeWindow({.geometry = {300, 200, 400, 250}, .title = "Übersicht 一覧"});
    const auto identity = identityOf(*window);
    EXPECT_EQ(identity.topLevel, window->id());
    EXPECT_EQ(identity.title, "Übersicht 一覧");
    EXPECT_EQ(identity.processID, getpid());
    EXPECT_EQ(identity.bundleIdentifier, "TestWindow");
    EXPECT_EQ(identity.applicationClass, "TestWindow");
    EXPECT_EQ(identity.layer, layer::normal);
    EXPECT_EQ(identity.alpha, 1);
    EXPECT_EQ(identity.rootBounds, (Rect{300, 200, 400, 250}));
    EXPECT_TRUE(identity.isOnScreen);
    EXPECT_FALSE(identity.isOverrideRedirect);
}

TEST_F(WindowIdentityTest, MakesEveryTitleValid) {
    const auto window = makeWindow({});
    window->setText("_NET_WM_NAME", "UTF8_STRING", "broken \xE3\x81 and\ttab\xFF");
    EXPECT_EQ(identityOf(*window).title, "broken \uFFFD\uFFFD and tab\uFFFD");
    window->setText("_NET_WM_NAME", "UTF8_STRING", "");
    window->setText("WM_NAME", "STRING", "caf\xE9");
    EXPECT_EQ(identityOf(*window).title, "café");
    window->setText("WM_NAME", "COMPOUND_TEXT", "mail \x1B$(BF|\x1B(B (3)");
    EXPECT_EQ(identityOf(*window).title, "mail 日 (3)");
    window->setText("WM_NAME", "STRING", "");
    EXPECT_EQ(identityOf(*window).title, std::nullopt);
}

TEST_F(WindowIdentityTest, TakesTheProcessThatAWindowOfThisMachineNamesElseTheServersOwn) {
    const auto window = makeWindow({.processIdentifier = 4711});
    EXPECT_EQ(identityOf(*window).processID, 4711);
    window->setText("WM_CLIENT_MACHINE", "STRING", "elsewhere.example");
    EXPECT_EQ(identityOf(*window).processID, getpid()) << "who is connected for that machine";
    const auto zero = makeWindow({.processIdentifier = 0});
    EXPECT_EQ(identityOf(*zero).processID, getpid());
    const auto huge = makeWindow({.processIdentifier = 0xFFFFFFFF});
    EXPECT_EQ(identityOf(*huge).processID, getpid());
    huge->removeProperty("_NET_WM_PID");
    EXPECT_EQ(identityOf(*huge).processID, getpid());
}

TEST_F(WindowIdentityTest, NamesTheApplicationByTheBestNameThatItGives) {
    const auto window = makeWindow({.className = "Viewer"});
    EXPECT_EQ(identityOf(*window).bundleIdentifier, "Viewer");
    window->setText("_KDE_NET_WM_DESKTOP_FILE", "UTF8_STRING", "org.kde.viewer");
    EXPECT_EQ(identityOf(*window).bundleIdentifier, "org.kde.viewer");
    window->setText("_BAMF_DESKTOP_FILE", "UTF8_STRING",
                    "/usr/share/applications/org.example.viewer.desktop");
    EXPECT_EQ(identityOf(*window).bundleIdentifier, "org.example.viewer");
    window->setText("_GTK_APPLICATION_ID", "UTF8_STRING", "org.gnome.Viewer");
    EXPECT_EQ(identityOf(*window).bundleIdentifier, "org.gnome.Viewer");
    EXPECT_EQ(identityOf(*window).applicationClass, "Viewer");
}

TEST_F(WindowIdentityTest, IsWithoutApplicationWhenTheWindowNamesNone) {
    const auto window = makeWindow({});
    window->setText("WM_CLASS", "STRING", "no separator");
    EXPECT_EQ(identityOf(*window).bundleIdentifier, std::nullopt);
    window->setText("WM_CLASS", "STRING", std::string("instance\0", 9));
    EXPECT_EQ(identityOf(*window).bundleIdentifier, std::nullopt);
}

TEST_F(WindowIdentityTest, PutsEveryTypeOfWindowOnItsLayer) {
    const auto window = makeWindow({});
    const auto popUp = makeWindow({.overrideRedirect = true});
    const auto layersOf = [&](const char* type) {
        for (auto* const each : {window.get(), popUp.get()}) {
            each->setProperty("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                              {each->atom(std::string("_NET_WM_WINDOW_TYPE_") + type)});
        }
        return std::pair(identityOf(*window).layer, identityOf(*popUp).layer);
    };
    EXPECT_EQ(identityOf(*popUp).layer, layer::popUp);
    EXPECT_EQ(layersOf("NORMAL"), std::pair(0, 101));
    EXPECT_EQ(layersOf("DIALOG"), std::pair(0, 101));
    EXPECT_EQ(layersOf("OF_THE_FUTURE"), std::pair(0, 101));
    EXPECT_EQ(layersOf("DESKTOP"), std::pair(-1, -1));
    EXPECT_EQ(layersOf("UTILITY"), std::pair(3, 3));
    EXPECT_EQ(layersOf("TOOLBAR"), std::pair(3, 3));
    EXPECT_EQ(layersOf("MENU"), std::pair(3, 3));
    EXPECT_EQ(layersOf("SPLASH"), std::pair(3, 3));
    EXPECT_EQ(layersOf("DOCK"), std::pair(20, 20));
    EXPECT_EQ(layersOf("NOTIFICATION"), std::pair(25, 25));
    EXPECT_EQ(layersOf("DROPDOWN_MENU"), std::pair(101, 101));
    EXPECT_EQ(layersOf("POPUP_MENU"), std::pair(101, 101));
    EXPECT_EQ(layersOf("COMBO"), std::pair(101, 101));
    EXPECT_EQ(layersOf("TOOLTIP"), std::pair(200, 200));
    EXPECT_EQ(layersOf("DND"), std::pair(500, 500));
}

TEST_F(WindowIdentityTest, TakesTheFirstTypeThatItKnows) {
    const auto window = makeWindow({});
    window->setProperty("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM,
                        {window->atom("_KDE_NET_WM_WINDOW_TYPE_OVERRIDE"),
                         window->atom("_NET_WM_WINDOW_TYPE_DOCK"),
                         window->atom("_NET_WM_WINDOW_TYPE_NORMAL")});
    EXPECT_EQ(identityOf(*window).layer, layer::dock);
}

TEST_F(WindowIdentityTest, TellsHowOpaqueTheWindowIs) {
    const auto window = makeWindow({.opacity = 0.5});
    EXPECT_NEAR(identityOf(*window).alpha, 0.5, 1e-6);
    window->setOpacity(0);
    EXPECT_EQ(identityOf(*window).alpha, 0);
    window->setOpacity(1);
    EXPECT_EQ(identityOf(*window).alpha, 1);
}

TEST_F(WindowIdentityTest, LeavesTheShadowThatAWindowDrawsOut) {
    const auto window = makeWindow({.geometry = {100, 100, 400, 300}});
    window->setProperty("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {10, 12, 8, 20});
    EXPECT_EQ(identityOf(*window).rootBounds, (Rect{110, 108, 378, 272}));
    window->setProperty("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {200, 200, 0, 0});
    EXPECT_EQ(identityOf(*window).rootBounds, (Rect{100, 100, 400, 300}));
    window->setProperty("_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {10});
    EXPECT_EQ(identityOf(*window).rootBounds, (Rect{100, 100, 400, 300}));
}

TEST_F(WindowIdentityTest, LeavesOutWindowsThatHaveGoneAndKeepsTheOrder) {
    const auto first = makeWindow({.title = "first"});
    const auto second = makeWindow({.title = "second"});
    const auto third = makeWindow({.title = "third"});
    const auto clients = readClientList(*connection);
    second->destroy();
    const auto identities = readIdentities(*connection, *clients);
    ASSERT_EQ(identities.size(), 2U);
    EXPECT_EQ(identities[0].title, "third");
    EXPECT_EQ(identities[1].title, "first");
}

class ManagedWindowIdentityTest : public WindowIdentityTest {
protected:
    ManagedWindowIdentityTest()
        : WindowIdentityTest(test::WindowManager::openbox) {}

    void tellWindowManager(const test::TestWindow& window, const char* type, std::uint32_t value) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window.id();
        message.type = window.atom(type);
        message.data.data32[0] = value;
        xcb_send_event(desktop.connection(), 0, desktop.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(desktop.connection());
    }
};

TEST_F(ManagedWindowIdentityTest, TellsTheFrameAndTheBoundsOfTheClient) {
    const auto window = makeWindow({.geometry = {300, 200, 400, 250}});
    const auto identity = identityOf(*window);
    EXPECT_NE(identity.topLevel, window->id());
    EXPECT_EQ(identity.rootBounds, (Rect{300, 200, 400, 250}));
    EXPECT_EQ(identity.layer, layer::normal);
    EXPECT_FALSE(identity.isOverrideRedirect);
    EXPECT_TRUE(identity.isOnScreen);
}

TEST_F(ManagedWindowIdentityTest, ListsAMinimisedWindowThatIsNotOnScreen) {
    const auto window = makeWindow({});
    constexpr std::uint32_t iconic = 3;
    tellWindowManager(*window, "WM_CHANGE_STATE", iconic);
    EXPECT_TRUE(loop.spinUntil([&] { return !identityOf(*window).isOnScreen; }));
    EXPECT_EQ(identityOf(*window).title, "test window");
    EXPECT_EQ(identityOf(*window).layer, layer::normal);
}

TEST_F(ManagedWindowIdentityTest, ListsAWindowOfAnotherWorkspaceThatIsNotOnScreen) {
    const auto window = makeWindow({});
    ASSERT_TRUE(loop.spinUntil([&] { return identityOf(*window).isOnScreen; }));
    tellWindowManager(*window, "_NET_WM_DESKTOP", 1);
    EXPECT_TRUE(loop.spinUntil([&] { return !identityOf(*window).isOnScreen; }));
    tellWindowManager(*window, "_NET_WM_DESKTOP", 0xFFFFFFFF);
    EXPECT_TRUE(loop.spinUntil([&] { return identityOf(*window).isOnScreen; }));
}

TEST_F(ManagedWindowIdentityTest, FindsTheOpacityOnTheFrame) {
    const auto window = makeWindow({});
    const auto frame = identityOf(*window).topLevel;
    const std::uint32_t quarter = 0x40000000;
    xcb_change_property(desktop.connection(), XCB_PROP_MODE_REPLACE, frame,
                        desktop.server().atom("_NET_WM_WINDOW_OPACITY"), XCB_ATOM_CARDINAL, 32, 1,
                        &quarter);
    xcb_flush(desktop.connection());
    EXPECT_TRUE(loop.spinUntil([&] { return identityOf(*window).alpha < 0.3; }));
    EXPECT_NEAR(identityOf(*window).alpha, 0.25, 1e-6);
}

} // namespace
} // namespace kestrove::x11
