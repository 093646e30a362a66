#include "Platform/X11/HotKeys/XkbProtocol.h"
#include "Tests/Support/PixelReader/PixelReader.h"
#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/TestWindow/TestWindow.h"
#include "Tests/Support/XServer/KeyPresses.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Application/ApplicationFixture.h"

#include <fmt/format.h>

#include <optional>
#include <string>

namespace kestrove::test {
namespace {

namespace Keys = ServerKey;
constexpr std::uint16_t controlSuper = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;

/// The right display is shared; a window of another program has the focus.
class Shortcuts : public ApplicationFixture {
protected:
    void startUnfocused(const std::string& settings = {}) {
        start(onlyDisplay("RIGHT") + settings);
        ASSERT_TRUE(showsPlaceholder("idle"));
        focusOther();
    }
    void focusOther() {
        other.emplace(desktop.displayName(),
                      TestWindow::Options{.geometry = {4, 476, 30, 30}, .title = "other"});
        // The program's own wish for the focus, at its start, may come after this window's.
        EXPECT_TRUE(waitUntil([this] {
            const bool isFocused = focused() == other->id();
            if (!isFocused && other->isViewable())
                xcb_set_input_focus(desktop.connection(), XCB_INPUT_FOCUS_POINTER_ROOT, other->id(),
                                    XCB_CURRENT_TIME);
            return isFocused;
        }));
    }
    [[nodiscard]] xcb_window_t focused() const {
        const Reply reply(xcb_get_input_focus_reply(
            desktop.connection(), xcb_get_input_focus(desktop.connection()), nullptr));
        return reply ? reply->focus : xcb_window_t{XCB_WINDOW_NONE};
    }
    [[nodiscard]] bool isPickerFocused() const {
        const Reply title(xcb_get_property_reply(
            desktop.connection(),
            xcb_get_property(desktop.connection(), 0, focused(), server.atom("_NET_WM_NAME"),
                             XCB_ATOM_ANY, 0, 100),
            nullptr));
        return title && std::string_view(
                            static_cast<const char*>(xcb_get_property_value(title.get())),
                            static_cast<std::size_t>(xcb_get_property_value_length(title.get()))) ==
                            "kestrove — ソース選択";
    }
    void press(const std::vector<xcb_keycode_t>& keys) {
        pressTogether(desktop.connection(), keys);
    }
    void pressControlSuper(xcb_keycode_t key) { press({Keys::control, Keys::super, key}); }
    void setLayout(const char* layout) {
        const auto program = desktop.start({"setxkbmap", layout});
        EXPECT_TRUE(program->waitForExit(patience) && program->exitCode() == 0) << layout;
    }
    /// Which layout of those that are set is the one in use.
    void chooseGroup(std::uint8_t group) {
        auto* const connection = desktop.connection();
        const Reply used(xcb_xkb_use_extension_reply(
            connection, xcb_xkb_use_extension(connection, 1, 0), nullptr));
        xcb_xkb_latch_lock_state(connection, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
        sync(connection);
    }
    [[nodiscard]] bool stores(std::string_view text) {
        return waitUntil([&] { return contentOf(settingsFile()).find(text) != std::string::npos; });
    }
    [[nodiscard]] bool take(xcb_keycode_t key) {
        return !Reply(xcb_request_check(
            desktop.connection(),
            xcb_grab_key_checked(desktop.connection(), 0, desktop.root(), controlSuper, key,
                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    }
    /// Opens the settings by the menu and moves on to the recorder of the first shortcut.
    void goToTheFirstRecorder() {
        other.reset();
        openMenuByKey();
        for (int count = 0; count < 3; ++count)
            press({Keys::up});
        press({Keys::returnKey});
        ASSERT_TRUE(waitUntil([this] { return focused() != window() && !isMenuOpen(); }));
        const auto settingsWindow = focused();
        ASSERT_TRUE(waitUntil([&] { return focused() == settingsWindow; }));
        // The mode has the focus; the frame rate and three switches come first.
        for (int count = 0; count < 5; ++count)
            press({Keys::tab});
    }

    /// In the recorder that has the focus; `begin` is the key that starts it. It shows when it
    /// records: asking for its grab of the keyboard would take the keyboard away from it.
    void record(xcb_keycode_t begin, const std::vector<xcb_keycode_t>& keys) {
        const auto settingsWindow = focused();
        auto last = readPixels(desktop.connection(), settingsWindow);
        const auto changes = [&] {
            const auto before = last;
            last = readPixels(desktop.connection(), settingsWindow);
            return !areAlike(last, before, 0);
        };
        // The focus has come to rest where the keys have led it.
        int inARow = 0;
        constexpr int enough = 20;
        ASSERT_TRUE(waitUntil([&] { return (inARow = changes() ? 0 : inARow + 1) >= enough; }));
        press({begin});
        ASSERT_TRUE(waitUntil(changes)) << "it does not record";
        press(keys);
        ASSERT_TRUE(waitUntil(changes)) << "it goes on recording";
    }

    std::optional<TestWindow> other;
};

TEST_F(Shortcuts, StartAndStopWhileAnotherProgramHasTheFocus) {
    startUnfocused();
    pressControlSuper(Keys::s);
    EXPECT_TRUE(shows(right, "started"));
    focusOther();
    pressControlSuper(Keys::s);
    EXPECT_TRUE(showsPlaceholder("stopped"));
    focusOther();
    press({Keys::capsLock});
    press({Keys::numLock});
    pressControlSuper(Keys::s);
    EXPECT_TRUE(shows(right, "started with locks"));
}

TEST_F(Shortcuts, HideTheWindowAndShowIt) {
    startUnfocused();
    pressControlSuper(Keys::h);
    EXPECT_TRUE(stores("kestrove.hideOutputWindow=true"));
    pressControlSuper(Keys::h);
    EXPECT_TRUE(stores("kestrove.hideOutputWindow=false"));
    pressControlSuper(Keys::h);
    EXPECT_TRUE(stores("kestrove.hideOutputWindow=true"));
    focusOther();
    pressControlSuper(Keys::w);
    EXPECT_TRUE(stores("kestrove.hideOutputWindow=false"));
    EXPECT_TRUE(waitUntil([this] { return focused() == window(); }));
}

TEST_F(Shortcuts, AreInTheSamePlaceOnEveryLayoutWhateverTheLocks) {
    startUnfocused();
    for (const auto* const layout : {"jp,us", "us,jp"}) {
        setLayout(layout);
        for (const std::uint8_t group : {0, 1}) {
            chooseGroup(group);
            for (const auto lock : {Keys::capsLock, Keys::numLock}) {
                const auto where = fmt::format("{} {} {}", layout, group, lock);
                press({lock});
                focusOther();
                pressControlSuper(Keys::s);
                EXPECT_TRUE(shows(right, "started")) << where;
                focusOther();
                pressControlSuper(Keys::s);
                EXPECT_TRUE(showsPlaceholder("stopped")) << where;
                focusOther();
                pressControlSuper(Keys::h);
                EXPECT_TRUE(stores("kestrove.hideOutputWindow=true")) << where;
                pressControlSuper(Keys::w);
                EXPECT_TRUE(stores("kestrove.hideOutputWindow=false")) << where;
                EXPECT_TRUE(waitUntil([this] { return focused() == window(); })) << where;
                focusOther();
                pressControlSuper(Keys::p);
                EXPECT_TRUE(waitUntil([this] { return isPickerFocused(); })) << where;
                press({Keys::escape});
                EXPECT_TRUE(waitUntil([this] { return !isPickerFocused(); })) << where;
            }
        }
    }
}

TEST_F(Shortcuts, AreEachDoneAsOftenAsTheyArePressed) {
    startUnfocused();
    keyDown(desktop.connection(), Keys::control);
    keyDown(desktop.connection(), Keys::super);
    for (int time = 0; time < 3; ++time)
        press({Keys::h});
    EXPECT_TRUE(stores("kestrove.hideOutputWindow=true"));
    for (int time = 0; time < 2; ++time)
        press({Keys::w});
    EXPECT_TRUE(stores("kestrove.hideOutputWindow=false"));
    EXPECT_TRUE(waitUntil([this] { return focused() == window(); }));
    focusOther();
    // Started, stopped, and started again. A press while it still ends would be one more stop.
    press({Keys::s});
    EXPECT_TRUE(shows(right, "started by the first press"));
    press({Keys::s});
    EXPECT_TRUE(showsPlaceholder("stopped by the second"));
    press({Keys::s});
    keyUp(desktop.connection(), Keys::super);
    keyUp(desktop.connection(), Keys::control);
    EXPECT_TRUE(shows(right, "started by the third"));
}

TEST_F(Shortcuts, AreTheSavedOnes) {
    startUnfocused(R"(kestrove.shortcutBindings={"startStop":{"keyCode":96,"modifiers":0,)"
                   "\"characters\":\"\"}}\n");
    press({Keys::f5});
    EXPECT_TRUE(shows(right, "started"));
    EXPECT_TRUE(take(Keys::s)) << "the default is free";
}

TEST_F(Shortcuts, AreTheDefaultsWhenTheSavedOnesAreTaken) {
    ASSERT_TRUE(take(Keys::d));
    startUnfocused(R"(kestrove.shortcutBindings={"startStop":{"keyCode":2,"modifiers":4352,)"
                   "\"characters\":\"d\"}}\n");
    EXPECT_TRUE(stores(R"("startStop":{"keyCode":1,"modifiers":4352,"characters":"S"})"));
    pressControlSuper(Keys::s);
    EXPECT_TRUE(shows(right, "started"));
}

TEST_F(Shortcuts, AreTheDefaultsWhenTheSavedOnesAreDuplicates) {
    startUnfocused(R"(kestrove.shortcutBindings={"startStop":{"keyCode":4,"modifiers":4352,)"
                   "\"characters\":\"h\"}}\n");
    EXPECT_TRUE(stores(R"("startStop":{"keyCode":1,"modifiers":4352,"characters":"S"})"));
    pressControlSuper(Keys::s);
    EXPECT_TRUE(shows(right, "started"));
}

TEST_F(Shortcuts, AreRecordedByKeyboardAlone) {
    startUnfocused();
    goToTheFirstRecorder();
    record(Keys::returnKey, {Keys::control, Keys::super, Keys::d});
    EXPECT_TRUE(stores(R"("startStop":{"keyCode":2,"modifiers":4352,"characters":"d"})"));
    focusOther();
    pressControlSuper(Keys::s);
    EXPECT_TRUE(showsPlaceholder("not by the old key"));
    pressControlSuper(Keys::d);
    EXPECT_TRUE(shows(right, "started by the new key"));
}

TEST_F(Shortcuts, OfTheWindowManagerAreRecordedAndRefused) {
    startUnfocused();
    goToTheFirstRecorder();
    const auto settingsWindow = focused();
    record(Keys::returnKey, {Keys::alt, Keys::f4});
    EXPECT_TRUE(waitUntil([this] {
        return program().logTail().find("startStop (⌥F4), status=-9878") != std::string::npos;
    }));
    EXPECT_EQ(focused(), settingsWindow) << "it was not closed";
}

TEST_F(Shortcuts, CanBeRecordedOnTheirOwnKeys) {
    startUnfocused();
    goToTheFirstRecorder();
    record(Keys::space, {Keys::control, Keys::super, Keys::s});
    EXPECT_TRUE(stores(R"("startStop":{"keyCode":1,"modifiers":4352,"characters":"s"})"));
    EXPECT_TRUE(showsPlaceholder("recorded, not started"));
    focusOther();
    pressControlSuper(Keys::s);
    EXPECT_TRUE(shows(right, "started"));
}

TEST_F(Shortcuts, KeepTheOldKeyWhenAnotherProgramHasTheNewOne) {
    startUnfocused();
    ASSERT_TRUE(take(Keys::d));
    goToTheFirstRecorder();
    record(Keys::returnKey, {Keys::control, Keys::super, Keys::d});
    // It was tried and given up: the old key is ours again.
    focusOther();
    pressControlSuper(Keys::s);
    EXPECT_TRUE(shows(right, "started by the old key"));
    EXPECT_EQ(contentOf(settingsFile()).find("shortcutBindings"), std::string::npos);
}

} // namespace
} // namespace kestrove::test
