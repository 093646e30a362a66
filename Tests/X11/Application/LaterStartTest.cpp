// Somebody starts the program once more, from a terminal in which he types.

#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/ApplicationFixture.h"
#include "Tests/X11/Application/Paths.h"

#include <string>

namespace kestrove::test {
namespace {

/// On every window manager: each of them has its own way to keep the keyboard where it is.
class LaterStart : public ApplicationFixture, public testing::WithParamInterface<WindowManager> {
protected:
    LaterStart()
        : ApplicationFixture(GetParam()) {}

    [[nodiscard]] xcb_window_t focused() const {
        const Reply focus(xcb_get_input_focus_reply(
            desktop.connection(), xcb_get_input_focus(desktop.connection()), nullptr));
        return focus ? focus->focus : xcb_window_t{XCB_WINDOW_NONE};
    }
    [[nodiscard]] bool hasKeyboard(xcb_window_t window) const {
        return waitUntil([&] { return focused() == window; });
    }
    /// The user turns to it, as by a click in a list of windows, and types.
    void typeInto(const TestWindow& terminal) {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = terminal.id();
        message.type = server.atom("_NET_ACTIVE_WINDOW");
        message.data.data32[0] = 2; // from a pager
        ASSERT_TRUE(waitUntil([&] {
            xcb_send_event(desktop.connection(), 0, desktop.root(),
                           XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT |
                               XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                           reinterpret_cast<const char*>(&message));
            xcb_flush(desktop.connection());
            return focused() == terminal.id();
        }));
        server.press(Key::returnKey);
    }
    void startAgain() {
        const auto later = desktop.start({programPath()});
        ASSERT_TRUE(later->waitForExit(patience));
        ASSERT_EQ(later->exitCode(), 0);
    }
    [[nodiscard]] xcb_window_t panel() const { return find("Kestrove"); }
};

TEST_P(LaterStart, GivesThePanelTheKeyboard) {
    start("");
    const TestWindow terminal(desktop.displayName(),
                              {.geometry = {900, 400, 600, 300}, .title = "terminal"});
    for (int time = 0; time < 4; ++time) {
        ASSERT_NO_FATAL_FAILURE(typeInto(terminal));
        ASSERT_NO_FATAL_FAILURE(startAgain());
        ASSERT_TRUE(waitUntil([this] { return panel() != XCB_WINDOW_NONE; }));
        EXPECT_TRUE(hasKeyboard(panel())) << "at time " << time;
        // At every other time it is still open, behind the terminal.
        if (time % 2 == 0)
            continue;
        server.press(Key::escape);
        EXPECT_TRUE(waitUntil([this] { return panel() == XCB_WINDOW_NONE; }));
    }
}

std::string nameOf(WindowManager manager) {
    switch (manager) {
    case WindowManager::openbox:
        return "Openbox";
    case WindowManager::xfwm4:
        return "Xfwm4";
    case WindowManager::metacity:
        return "Metacity";
    case WindowManager::mutter:
        return "Mutter";
    case WindowManager::kwin:
        return "KWin";
    case WindowManager::i3:
        return "I3";
    case WindowManager::none:
        return "None";
    }
    return {};
}

INSTANTIATE_TEST_SUITE_P(Desks, LaterStart,
                         testing::Values(WindowManager::openbox, WindowManager::xfwm4,
                                         WindowManager::metacity, WindowManager::mutter,
                                         WindowManager::kwin, WindowManager::i3),
                         [](const auto& tested) { return nameOf(tested.param); });

} // namespace
} // namespace kestrove::test
