#include "Tests/Support/XServer/SecondKeyboard.h"
#include "Tests/X11/Desktop/HotKeysFixture.h"

#include <fmt/format.h>

namespace kestrove::x11 {
namespace {

using Told = std::vector<std::uint32_t>;
namespace Keys = test::ServerKey;
constexpr std::uint16_t controlSuper = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;
constexpr std::uint16_t controlMod3 = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_3;

/// Two keyboards, of which the second one comes and goes.
class KeyboardPlugging : public HotKeysFixture {
protected:
    void pressOnSecond(std::initializer_list<xcb_keycode_t> keys) { second.pressTogether(keys); }
    /// Its Super keys carry another modifier bit than those of the first keyboard.
    void moveSuperOfSecond() {
        run({"sh", "-c",
             fmt::format("xkbcomp {0} - | sed 's/_map Mod4/_map Mod3/' | xkbcomp -i {1} - {0}",
                         desktop.displayName(), second.device())});
        settle();
    }
    /// Whether another program is refused this very combination.
    bool isGrabbed(std::uint16_t modifiers, xcb_keycode_t key) {
        const bool isTaken = !takeByOther(modifiers, key);
        xcb_ungrab_key(desktop.connection(), key, desktop.root(), modifiers);
        test::sync(desktop.connection());
        return isTaken;
    }

    test::SecondKeyboard second{desktop.connection()};
};

TEST_F(KeyboardPlugging, HotKeysWorkOnBothKeyboardsAndAcrossThem) {
    registered(keyS, controlCommand, 1);
    press({control, super, Keys::s});
    pressOnSecond({control, super, Keys::s});
    EXPECT_EQ(told(), (Told{1, 1}));
    second.keyDown(control);
    second.keyDown(super);
    press({Keys::s});
    second.keyUp(super);
    second.keyUp(control);
    EXPECT_EQ(told(), Told{1});
}

TEST_F(KeyboardPlugging, HotKeysWorkOnAKeyboardThatComes) {
    second.pull();
    registered(keyS, controlCommand, 1);
    registered(keyF5, 0, 2);
    pressOnSecond({Keys::f5});
    EXPECT_EQ(told(), Told()) << "it is not there";
    second.plug();
    pressOnSecond({control, super, Keys::s});
    pressOnSecond({Keys::f5});
    press({Keys::f5});
    EXPECT_EQ(told(), (Told{1, 2, 2}));
}

TEST_F(KeyboardPlugging, HotKeysGoOnWhenAKeyboardIsPulled) {
    registered(keyS, controlCommand, 1);
    for (int time = 0; time < 3; ++time) {
        pressOnSecond({control, super, Keys::s});
        second.pull();
        press({control, super, Keys::s});
        EXPECT_EQ(told(), (Told{1, 1})) << time;
        second.plug();
    }
}

TEST_F(KeyboardPlugging, AKeyThatWasHeldOnAPulledKeyboardIsNotStuck) {
    registered(keyF5, 0, 1);
    second.keyDown(Keys::f5);
    second.pull();
    EXPECT_EQ(told(), Told{1});
    press({Keys::f5});
    EXPECT_EQ(told(), Told{1});
    second.plug();
    pressOnSecond({Keys::f5});
    EXPECT_EQ(told(), Told{1});
}

TEST_F(KeyboardPlugging, HotKeysAreInTheSamePlaceOnAKeyboardOfAnotherLayout) {
    registered(keyS, controlCommand, 1);
    run({"setxkbmap", "-device", std::to_string(second.device()), "jp"});
    settle();
    for (int time = 0; time < 3; ++time) {
        pressOnSecond({control, super, Keys::s});
        press({control, super, Keys::s});
        EXPECT_EQ(told(), (Told{1, 1})) << time;
    }
}

TEST_F(KeyboardPlugging, HotKeysFollowTheModifiersOfTheKeyboardInUse) {
    registered(keyS, controlCommand, 1);
    moveSuperOfSecond();
    EXPECT_TRUE(isGrabbed(controlSuper, Keys::s));
    for (int time = 0; time < 3; ++time) {
        // The keyboard that was touched last is the one whose map counts.
        second.keyDown(control);
        ASSERT_TRUE(loop.spinUntil([&] { return isGrabbed(controlMod3, Keys::s); })) << time;
        EXPECT_FALSE(isGrabbed(controlSuper, Keys::s)) << time;
        pressOnSecond({super, Keys::s});
        second.keyUp(control);
        EXPECT_EQ(told(), Told{1}) << time;

        test::keyDown(desktop.connection(), control);
        ASSERT_TRUE(loop.spinUntil([&] { return isGrabbed(controlSuper, Keys::s); })) << time;
        press({super, Keys::s});
        test::keyUp(desktop.connection(), control);
        EXPECT_EQ(told(), Told{1}) << time;
    }
}

TEST_F(KeyboardPlugging, AKeyThatIsHeldIsOnePressAlsoWhileTheModifiersMove) {
    run({"xset", "r", "rate", "20", "100"});
    registered(keyF5, 0, 1);
    moveSuperOfSecond();
    second.keyDown(Keys::f5);
    ASSERT_TRUE(isRepeated());
    // The map of the other keyboard comes into force, and back.
    press({control});
    ASSERT_TRUE(isRepeated());
    EXPECT_EQ(told(), Told{1});
    second.keyUp(Keys::f5);
    pressOnSecond({Keys::f5});
    EXPECT_EQ(told(), Told{1});
}

} // namespace
} // namespace kestrove::x11
