#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/Paths.h"
#include "Tests/X11/Application/TrayFixture.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>

namespace kestrove::test {
namespace {

constexpr std::uint8_t leftButton = 1;

/// The panel, which is walked through by the keyboard.
class Panel : public TrayFixture {
protected:
    /// With the tray on the left display, the right one is shared.
    [[nodiscard]] testing::AssertionResult share() {
        startTray();
        start("kestrove.autoStart=true\n" + onlyDisplay("RIGHT"));
        return shows(right, "the right display");
    }

    [[nodiscard]] bool open() { return clickIcon(leftButton); }

    [[nodiscard]] bool isOpen() const { return find("Kestrove") != XCB_WINDOW_NONE; }

    /// Down, or up.
    void walk(int steps) {
        for (int each = 0; each < std::abs(steps); ++each)
            server.press(steps > 0 ? Key::down : Key::up);
    }
    void choose(int steps) {
        walk(steps);
        server.press(Key::returnKey);
    }
    [[nodiscard]] bool closes() {
        return waitUntil([this] { return !isOpen(); });
    }

    [[nodiscard]] xcb_rectangle_t place() const {
        auto* const connection = desktop.connection();
        const Reply reply(xcb_get_geometry_reply(
            connection, xcb_get_geometry(connection, find("Kestrove")), nullptr));
        return reply ? xcb_rectangle_t{reply->x, reply->y, reply->width, reply->height}
                     : xcb_rectangle_t{};
    }

    /// Whether a later start ends in order and the panel gets the keyboard.
    [[nodiscard]] bool startAgain() {
        const auto later = desktop.start({programPath()});
        return later->waitForExit(patience) && later->exitCode() == 0 && waitUntil([this] {
                   auto* const connection = desktop.connection();
                   const Reply reply(xcb_get_input_focus_reply(
                       connection, xcb_get_input_focus(connection), nullptr));
                   return reply && isOpen() && reply->focus == find("Kestrove");
               });
    }
};

TEST_F(Panel, DoesEverythingByTheKeyboard) {
    ASSERT_TRUE(share());
    ASSERT_TRUE(open()) << program().logTail();
    choose(1);
    EXPECT_TRUE(showsPlaceholder("stopped"));
    server.press(Key::space);
    EXPECT_TRUE(shows(right, "started"));
    walk(-6); // over the end: quit, policy, settings, hiding, showing, the refresh
    server.press(Key::returnKey);
    choose(2); // the hiding
    EXPECT_TRUE(hasSaved("kestrove.hideOutputWindow=true"));
    server.press(Key::escape);
    ASSERT_TRUE(closes());

    ASSERT_TRUE(open()) << program().logTail();
    choose(-4);
    EXPECT_TRUE(hasSaved("kestrove.hideOutputWindow=false"));
    EXPECT_TRUE(closes());
    ASSERT_TRUE(open()) << program().logTail();
    pressTogether(desktop.connection(), {ServerKey::tab});
    server.press(Key::space);
    EXPECT_TRUE(showsPlaceholder("stopped again"));
    server.press(Key::escape);
    ASSERT_TRUE(closes());
    ASSERT_TRUE(open()) << program().logTail();
    choose(-1);
    EXPECT_TRUE(endsWith(0));
}

TEST_F(Panel, ClosesByAClickElsewhereAndOnItsIcon) {
    ASSERT_TRUE(share());
    ASSERT_TRUE(open()) << program().logTail();
    server.movePointer(1700, 700);
    EXPECT_TRUE(waitUntil([this] {
        // It may be seen before it has the pointer.
        server.click(leftButton);
        return waitUntil([this] { return !isOpen(); }, std::chrono::seconds(1));
    }));
    ASSERT_TRUE(open()) << program().logTail();
    EXPECT_TRUE(waitUntil([this] {
        // The second half of a double click leaves it open.
        server.click(leftButton);
        return waitUntil([this] { return !isOpen(); }, std::chrono::seconds(1));
    }));
}

TEST_F(Panel, StaysOnItsDisplayInEveryCorner) {
    const auto contains = [](const xcb_rectangle_t& outer, const xcb_rectangle_t& inner) {
        return inner.width > 0 && inner.x >= outer.x && inner.y >= outer.y &&
               inner.x + inner.width <= outer.x + outer.width &&
               inner.y + inner.height <= outer.y + outer.height;
    };
    for (const auto* const edge : {"top", "bottom"}) {
        for (const auto* const align : {"left", "right"}) {
            startTray(edge, align);
            start("kestrove.autoStart=true\n");
            ASSERT_TRUE(open()) << edge << align;
            EXPECT_TRUE(waitUntil([&] { return contains(leftPlace, place()); })) << edge << align;
            program().signal(SIGTERM);
            EXPECT_TRUE(endsWith(0));
        }
    }
}

TEST_F(Panel, IsAWindowOfItsOwnWithoutATray) {
    start("");
    ASSERT_TRUE(startAgain());
    choose(1);
    ASSERT_TRUE(waitUntil([this] { return hasFocus(); })) << "the output has come with the session";
    EXPECT_TRUE(isOpen());
    ASSERT_TRUE(startAgain());
    server.press(Key::escape);
    EXPECT_TRUE(closes());
    EXPECT_TRUE(shows(left, "started"));
}

} // namespace
} // namespace kestrove::test
