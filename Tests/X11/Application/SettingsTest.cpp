#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/ApplicationFixture.h"

#include <algorithm>
#include <csignal>
#include <span>
#include <string>

#include <xcb/xproto.h>

namespace kestrove::test {
namespace {

class Settings : public ApplicationFixture {
protected:
    [[nodiscard]] bool hasState(std::string_view state) {
        const auto cookie = xcb_get_property(desktop.connection(), 0, window(),
                                             server.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 0, 100);
        const Reply reply(xcb_get_property_reply(desktop.connection(), cookie, nullptr));
        if (!reply)
            return false;
        const std::span atoms(static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get())),
                              reply->value_len);
        return std::ranges::find(atoms, server.atom(state)) != atoms.end();
    }
};

TEST_F(Settings, KeepTheOutputAboveWhenTheUserWantsThat) {
    start("kestrove.alwaysOnTop=true\n");
    EXPECT_TRUE(waitUntil([this] { return hasState("_NET_WM_STATE_ABOVE"); }));
}

TEST_F(Settings, LeaveTheOutputAmongTheOthersOtherwise) {
    start("");
    ASSERT_TRUE(showsPlaceholder("idle"));
    // The window manager writes the state when it takes the window over.
    ASSERT_TRUE(waitUntil([this] { return server.hasProperty(window(), "WM_STATE"); }));
    EXPECT_FALSE(hasState("_NET_WM_STATE_ABOVE"));
}

TEST_F(Settings, SurviveARunButForWindowsOfAnEarlierOne) {
    const std::string kept = "# mine\n"
                             "kestrove.targetFPS=24\n"
                             "unknown=kept\n";
    const auto display = onlyDisplay("RIGHT");
    auto sources = display;
    sources.replace(sources.rfind("]"), 1, R"(,{"window":{"_0":4711}}])");
    start(kept + sources + "kestrove.autoStart=true\n");
    EXPECT_TRUE(shows(right, "the display that was picked"));
    program().signal(SIGTERM);
    ASSERT_TRUE(endsWith(0));
    const auto after = contentOf(settingsFile());
    EXPECT_TRUE(after.starts_with(kept + display)) << after;

    // Read once more by the next run.
    start();
    EXPECT_TRUE(shows(right, "the same display"));
}

TEST_F(Settings, AreTheDefaultsWhenTheFileIsGarbage) {
    std::string garbage("kestrove.autoStart=tr\0ue\n\xff\xfe[{\nkestrove.manualSources=[{]\n", 56);
    for (int byte = 0; byte < 256; ++byte)
        garbage += static_cast<char>(byte);
    start(garbage);
    EXPECT_TRUE(showsPlaceholder("idle"));
    press(Key::returnKey);
    EXPECT_TRUE(shows(left, "follows the pointer"));
    program().signal(SIGTERM);
    EXPECT_TRUE(endsWith(0));
}

} // namespace
} // namespace kestrove::test
