#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/ApplicationFixture.h"

#include <chrono>
#include <cstdint>
#include <memory>

namespace kestrove::test {
namespace {

/// A desktop with a tray of the older kind (XEmbed) in the top left corner of the left display.
class Tray : public ApplicationFixture {
protected:
    Tray() {
        m_tray = desktop.start({"trayer", "--edge", "top", "--align", "left", "--widthtype",
                                "pixel", "--width", "100", "--heighttype", "pixel", "--height",
                                "28", "--expand", "false"});
        const auto hasTray = [this] {
            auto* const connection = desktop.connection();
            const auto cookie =
                xcb_get_selection_owner(connection, server.atom("_NET_SYSTEM_TRAY_S0"));
            const Reply owner(xcb_get_selection_owner_reply(connection, cookie, nullptr));
            return owner && owner->owner != XCB_WINDOW_NONE;
        };
        EXPECT_TRUE(waitUntil(hasTray)) << m_tray->logTail();
    }

    /// Clicks the icon, which comes when the tray has taken it in.
    [[nodiscard]] bool openTrayMenu(std::uint8_t button) {
        static constexpr int middle = 14;
        static constexpr std::chrono::seconds timeToOpen(1);
        server.movePointer(middle, middle);
        return waitUntil([this, button] {
            if (!isMenuOpen())
                server.click(button);
            return waitUntil([this] { return isMenuOpen(); }, timeToOpen);
        });
    }

    /// As the window manager's button does.
    void closeOutput() {
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window();
        message.type = server.atom("WM_PROTOCOLS");
        message.data.data32[0] = server.atom("WM_DELETE_WINDOW");
        xcb_send_event(desktop.connection(), 0, window(), 0,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(desktop.connection());
    }

    [[nodiscard]] bool isOutputSeen() {
        const auto cookie = xcb_get_window_attributes(desktop.connection(), window());
        const Reply reply(xcb_get_window_attributes_reply(desktop.connection(), cookie, nullptr));
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }

private:
    std::unique_ptr<ChildProcess> m_tray;
};

TEST_F(Tray, KeepsTheProgramWhenTheOutputIsClosedAndBringsItBack) {
    start("kestrove.autoStart=true\nkestrove.followMode=mouse\n");
    ASSERT_TRUE(waitUntil([this] { return isOutputSeen(); }));
    closeOutput();
    ASSERT_TRUE(waitUntil([this] { return !isOutputSeen(); }));
    EXPECT_TRUE(program().isRunning());

    ASSERT_TRUE(openTrayMenu(1)) << program().logTail();
    // The session, the picker, two modes, two displays, the refresh, then the showing.
    chooseFromMenu(8);
    EXPECT_TRUE(waitUntil([this] { return isOutputSeen(); }));
}

TEST_F(Tray, QuitsByItsMenu) {
    start("kestrove.autoStart=true\nkestrove.followMode=mouse\n");
    ASSERT_TRUE(openTrayMenu(3)) << program().logTail();
    chooseFromMenuEnd(1);
    EXPECT_TRUE(endsWith(0));
}

} // namespace
} // namespace kestrove::test
