#include "Tests/X11/Application/TrayFixture.h"

#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"

#include <chrono>

namespace kestrove::test {

TrayFixture::TrayFixture(SessionBus sessionBus)
    : ApplicationFixture(WindowManager::openbox, sessionBus) {}

void TrayFixture::startTray(const std::string& edge, const std::string& align,
                            const xcb_rectangle_t& display) {
    const auto* const monitor = display.x == leftPlace.x ? "0" : "1";
    const auto side = std::to_string(traySide);
    m_tray.reset(); // there is one tray at a time
    m_tray = desktop.start({"trayer", "--edge", edge, "--align", align, "--widthtype", "pixel",
                            "--width", side, "--heighttype", "pixel", "--height", side, "--expand",
                            "false", "--monitor", monitor});
    const auto hasTray = [this] {
        auto* const connection = desktop.connection();
        const auto cookie = xcb_get_selection_owner(connection, server.atom("_NET_SYSTEM_TRAY_S0"));
        const Reply owner(xcb_get_selection_owner_reply(connection, cookie, nullptr));
        return owner && owner->owner != XCB_WINDOW_NONE;
    };
    EXPECT_TRUE(waitUntil(hasTray)) << m_tray->logTail();
    m_iconX = align == "left" ? display.x + traySide / 2 : display.x + display.width - traySide / 2;
    m_iconY = edge == "top" ? traySide / 2 : display.height - traySide / 2;
}

void TrayFixture::pointAtIcon() {
    server.movePointer(m_iconX, m_iconY);
}

bool TrayFixture::clickIcon(std::uint8_t button) {
    static constexpr std::chrono::seconds timeToOpen(1);
    pointAtIcon();
    return waitUntil([this, button] {
        if (!isMenuOpen())
            server.click(button);
        return waitUntil([this] { return isMenuOpen(); }, timeToOpen);
    });
}

xcb_rectangle_t TrayFixture::iconPlace() const {
    return {static_cast<std::int16_t>(m_iconX - traySide / 2),
            static_cast<std::int16_t>(m_iconY - traySide / 2), traySide, traySide};
}

void TrayFixture::closeOutput() {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window();
    message.type = server.atom("WM_PROTOCOLS");
    message.data.data32[0] = server.atom("WM_DELETE_WINDOW");
    xcb_send_event(desktop.connection(), 0, window(), 0, reinterpret_cast<const char*>(&message));
    xcb_flush(desktop.connection());
}

bool TrayFixture::isOutputSeen() {
    const auto cookie = xcb_get_window_attributes(desktop.connection(), window());
    const Reply reply(xcb_get_window_attributes_reply(desktop.connection(), cookie, nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool TrayFixture::hasSaved(std::string_view line) const {
    return waitUntil([&] { return contentOf(settingsFile()).contains(line); });
}

} // namespace kestrove::test
