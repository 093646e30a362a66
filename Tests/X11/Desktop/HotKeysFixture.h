#pragma once

#include "Platform/X11/HotKeys/X11HotKeys.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Desktop/X11Fixture.h"

#include <chrono>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>
#include <xcb/xinput.h>

namespace kestrove::x11 {

/// Hot keys on a server of the test's own, with a window of another program focused.
class HotKeysFixture : public X11Fixture {
protected:
    static constexpr std::uint32_t keyS = 1;
    static constexpr std::uint32_t keyP = 35;
    static constexpr std::uint32_t keyF5 = 96;
    static constexpr std::uint32_t controlCommand = 0x1100;
    static constexpr auto control = test::ServerKey::control;
    static constexpr auto super = test::ServerKey::super;

    HotKeysFixture()
        : other(makeWindow({.geometry = {100, 100, 300, 200}}))
        , hotKeys(std::in_place, *connection)
        , handler(hotKeys->installHandler(
              [this](HotKeyIdentifier identifier) { pressed.push_back(identifier.number); })) {
        focusOther();
    }

    void focusOther() {
        xcb_set_input_focus(desktop.connection(), XCB_INPUT_FOCUS_POINTER_ROOT, other->id(),
                            XCB_CURRENT_TIME);
        test::sync(desktop.connection());
    }
    void press(std::initializer_list<xcb_keycode_t> keys) {
        test::pressTogether(desktop.connection(), keys);
    }
    /// What has reached the handler by the time the server has nothing more to tell.
    std::vector<std::uint32_t> told() {
        settle();
        return std::exchange(pressed, {});
    }
    HotKeyReference registered(std::uint32_t keyCode, std::uint32_t modifiers, std::uint32_t id) {
        const auto reference = hotKeys->registerHotKey(keyCode, modifiers, {0, id});
        EXPECT_TRUE(reference) << reference.error();
        return reference.value_or(0);
    }
    /// Whether another program can grab the key, with any modifiers at all.
    bool isFreeForOthers(xcb_keycode_t key) {
        auto* const others = desktop.connection();
        const auto cookie = xcb_grab_key_checked(others, 0, desktop.root(), XCB_MOD_MASK_ANY, key,
                                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const test::Reply error(xcb_request_check(others, cookie));
        xcb_ungrab_key(others, key, desktop.root(), XCB_MOD_MASK_ANY);
        test::sync(others);
        return !error;
    }
    /// The same by the kind of grab that came with the second version of XInput.
    bool takeByOthersInput2(std::uint32_t modifiers, xcb_keycode_t key) {
        auto* const others = desktop.connection();
        const test::Reply version(xcb_input_xi_query_version_reply(
            others, xcb_input_xi_query_version(others, 2, 2), nullptr));
        constexpr std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
        const test::Reply refused(xcb_input_xi_passive_grab_device_reply(
            others,
            xcb_input_xi_passive_grab_device(
                others, XCB_CURRENT_TIME, desktop.root(), XCB_CURSOR_NONE, key,
                XCB_INPUT_DEVICE_ALL_MASTER, 1, 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
                XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
                XCB_INPUT_GRAB_OWNER_NO_OWNER, &events, &modifiers),
            nullptr));
        return refused && xcb_input_xi_passive_grab_device_modifiers_length(refused.get()) == 0;
    }
    /// Waits for some repetitions of a hot key that is held.
    bool isRepeated() {
        int repeated = 0;
        const auto counting = connection->events.subscribe(
            [&](const auto& event) { repeated += test::isGrabbedKeyPress(event) ? 1 : 0; });
        return loop.spinUntil([&] { return repeated > 5; });
    }
    bool takeByOther(std::uint16_t modifiers, xcb_keycode_t key) {
        auto* const others = desktop.connection();
        const auto cookie = xcb_grab_key_checked(others, 0, desktop.root(), modifiers, key,
                                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        return !test::Reply(xcb_request_check(others, cookie));
    }
    /// A command of the desktop's, which has ended when this returns.
    void run(const std::vector<std::string>& command) {
        const auto program = desktop.start(command);
        ASSERT_TRUE(program->waitForExit(std::chrono::seconds(30))) << command.front();
        EXPECT_EQ(program->exitCode(), 0) << command.front();
    }

    std::unique_ptr<test::TestWindow> other;
    std::optional<X11HotKeys> hotKeys;
    std::vector<std::uint32_t> pressed;
    std::expected<Subscription, HotKeyStatus> handler;
};

} // namespace kestrove::x11
