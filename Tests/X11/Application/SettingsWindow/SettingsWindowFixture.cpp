#include "Tests/X11/Application/SettingsWindow/SettingsWindowFixture.h"

#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/Paths.h"

#include <fmt/format.h>

namespace kestrove::test {

namespace {

namespace Keys = ServerKey;
constexpr std::uint16_t controlSuper = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;

} // namespace

SettingsWindowFixture::SettingsWindowFixture(const std::string& title)
    : ApplicationFixture(WindowManager::openbox, SessionBus::own)
    , m_reader(desktop, title) {}

void SettingsWindowFixture::open(const std::string& settings) {
    writeSettings(onlyDisplay("RIGHT") + settings);
    start(std::vector<std::string>{"env", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1", programPath()});
    openMenuByKey();
    chooseFromMenuEnd(3);
    ASSERT_TRUE(waitUntil([this] { return !read().empty(); }));
}

std::string SettingsWindowFixture::recorder(std::string_view action, std::string_view keys,
                                            std::string_view status) {
    return fmt::format("push button|{}のショートカット|{}、{}。", action, keys, status);
}

std::string SettingsWindowFixture::recording(std::string_view action) {
    return fmt::format("push button|{}のショートカット|入力中。", action);
}

void SettingsWindowFixture::press(const std::vector<xcb_keycode_t>& keys) {
    pressTogether(desktop.connection(), keys);
}

void SettingsWindowFixture::pressControlSuper(xcb_keycode_t key) {
    press({Keys::control, Keys::super, key});
}

void SettingsWindowFixture::tabTo(std::string_view name) {
    constexpr int more = 12; // than there are
    for (int count = 0; count < more; ++count) {
        if (WindowReader::focusedName(read()) == name)
            return;
        press({Keys::tab});
    }
    FAIL() << "Tab does not lead to " << name;
}

void SettingsWindowFixture::record(std::string_view action,
                                   const std::vector<xcb_keycode_t>& keys) {
    tabTo(fmt::format("{}のショートカット", action));
    press({Keys::returnKey});
    ASSERT_TRUE(tells({recording(action)}));
    press(keys);
    ASSERT_TRUE(tells({}, {recording(action)}));
}

void SettingsWindowFixture::focusOther() {
    m_other.emplace(desktop.displayName(),
                    TestWindow::Options{.geometry = {4, 476, 30, 30}, .title = "other"});
    const auto hasFocus = [this] {
        const Reply reply(xcb_get_input_focus_reply(
            desktop.connection(), xcb_get_input_focus(desktop.connection()), nullptr));
        return reply && reply->focus == m_other->id();
    };
    EXPECT_TRUE(waitUntil(hasFocus));
}

void SettingsWindowFixture::closeOther() {
    m_other.reset();
    EXPECT_TRUE(waitUntil([this] { return !WindowReader::focusedName(read()).empty(); }));
}

void SettingsWindowFixture::take(xcb_keycode_t key) {
    const auto cookie = xcb_grab_key_checked(desktop.connection(), 0, desktop.root(), controlSuper,
                                             key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    ASSERT_FALSE(Reply(xcb_request_check(desktop.connection(), cookie)));
}

void SettingsWindowFixture::giveBack(xcb_keycode_t key) {
    xcb_ungrab_key(desktop.connection(), key, desktop.root(), controlSuper);
    sync(desktop.connection());
}

testing::AssertionResult SettingsWindowFixture::stores(std::string_view text) {
    const auto isStored = [&] { return stored().find(text) != std::string::npos; };
    return (waitUntil(isStored) ? testing::AssertionSuccess() : testing::AssertionFailure())
           << text << " in\n"
           << stored();
}

std::string SettingsWindowFixture::stored() const {
    return contentOf(settingsFile());
}

} // namespace kestrove::test
