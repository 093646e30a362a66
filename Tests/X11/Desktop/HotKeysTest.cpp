#include "Tests/X11/Desktop/HotKeysFixture.h"

#include <array>

namespace kestrove::x11 {
namespace {

using Told = std::vector<std::uint32_t>;
namespace Keys = test::ServerKey;
constexpr std::uint16_t controlSuper = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;

class HotKeys : public HotKeysFixture {};

TEST_F(HotKeys, WorkWhileAnotherProgramHasTheFocus) {
    registered(keyS, controlCommand, 1);
    registered(keyP, 0x800, 2);
    registered(keyF5, 0, 3);
    press({control, super, Keys::s});
    press({Keys::alt, Keys::p});
    press({Keys::f5});
    EXPECT_EQ(told(), (Told{1, 2, 3}));
}

TEST_F(HotKeys, NeedExactlyTheirModifiers) {
    registered(keyS, controlCommand, 1);
    press({Keys::s});
    press({control, Keys::s});
    press({super, Keys::s});
    press({control, super, Keys::shift, Keys::s});
    press({control, super, Keys::alt, Keys::s});
    EXPECT_EQ(told(), Told());
}

TEST_F(HotKeys, WorkInEveryStateOfTheLocks) {
    registered(keyS, controlCommand, 1);
    registered(keyF5, 0, 2);
    const std::array<std::vector<xcb_keycode_t>, 4> steps{
        {{Keys::capsLock}, {Keys::numLock}, {Keys::capsLock}, {Keys::numLock}}};
    for (const auto& step : steps) {
        test::pressTogether(desktop.connection(), step);
        press({control, super, Keys::s});
        press({Keys::f5});
        EXPECT_EQ(told(), (Told{1, 2}));
    }
}

TEST_F(HotKeys, LoseAndDoubleNoQuickPress) {
    registered(keyS, controlCommand, 1);
    test::keyDown(desktop.connection(), control);
    test::keyDown(desktop.connection(), super);
    for (int count = 0; count < 20; ++count)
        press({Keys::s});
    test::keyUp(desktop.connection(), super);
    test::keyUp(desktop.connection(), control);
    EXPECT_EQ(told(), Told(20, 1));
}

TEST_F(HotKeys, DoNotRepeatWhileTheyAreHeld) {
    // As fast as the server can: some ten repetitions in the time that the test takes.
    run({"xset", "r", "rate", "20", "100"});
    registered(keyS, controlCommand, 1);
    test::keyDown(desktop.connection(), control);
    test::keyDown(desktop.connection(), super);
    test::keyDown(desktop.connection(), Keys::s);
    ASSERT_TRUE(isRepeated()) << "the server does not repeat";
    test::keyUp(desktop.connection(), Keys::s);
    EXPECT_EQ(told(), Told{1});
    press({Keys::s});
    EXPECT_EQ(told(), Told{1});
}

TEST_F(HotKeys, WorkWithTwoKeysThatOverlap) {
    registered(keyS, controlCommand, 1);
    registered(keyP, controlCommand, 2);
    test::keyDown(desktop.connection(), control);
    test::keyDown(desktop.connection(), super);
    test::keyDown(desktop.connection(), Keys::s);
    test::keyUp(desktop.connection(), Keys::s);
    test::keyDown(desktop.connection(), Keys::p);
    press({Keys::s});
    test::keyUp(desktop.connection(), Keys::p);
    press({Keys::p});
    const auto all = told();
    EXPECT_EQ(std::ranges::count(all, 1U) + std::ranges::count(all, 2U),
              static_cast<std::ptrdiff_t>(all.size()));
    EXPECT_EQ(all.front(), 1U);
    EXPECT_EQ(std::ranges::count(all, 2U), 2);
}

TEST_F(HotKeys, LoseNoPressAfterOneThatRolledOverIt) {
    registered(keyS, controlCommand, 1);
    registered(keyP, controlCommand, 2);
    test::keyDown(desktop.connection(), control);
    test::keyDown(desktop.connection(), super);
    // The first key goes up before the second, as in quick typing.
    test::keyDown(desktop.connection(), Keys::s);
    test::keyDown(desktop.connection(), Keys::p);
    test::keyUp(desktop.connection(), Keys::s);
    test::keyUp(desktop.connection(), Keys::p);
    EXPECT_EQ(told(), (Told{1, 2}));
    press({Keys::p});
    press({Keys::s});
    EXPECT_EQ(told(), (Told{2, 1}));
    test::keyUp(desktop.connection(), super);
    test::keyUp(desktop.connection(), control);
}

TEST_F(HotKeys, DoNotRepeatAKeyThatIsHeldLongerThanTheOneBefore) {
    run({"xset", "r", "rate", "20", "100"});
    registered(keyS, controlCommand, 1);
    registered(keyP, controlCommand, 2);
    test::keyDown(desktop.connection(), control);
    test::keyDown(desktop.connection(), super);
    test::keyDown(desktop.connection(), Keys::s);
    test::keyDown(desktop.connection(), Keys::p);
    test::keyUp(desktop.connection(), Keys::s);
    ASSERT_TRUE(isRepeated());
    test::keyUp(desktop.connection(), Keys::p);
    EXPECT_EQ(told(), (Told{1, 2}));
    test::keyUp(desktop.connection(), super);
    test::keyUp(desktop.connection(), control);
}

TEST_F(HotKeys, AreRefusedWhenAnotherProgramHasThemByTheNewerKindOfGrab) {
    ASSERT_TRUE(takeByOthersInput2(controlSuper, Keys::s));
    const auto refused = hotKeys->registerHotKey(keyS, controlCommand, {0, 1});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), X11HotKeys::taken);
    EXPECT_TRUE(takeByOther(controlSuper, Keys::s)) << "nothing of it is left";
}

TEST_F(HotKeys, AreRefusedWhenAnotherProgramHasOneStateOfTheLocks) {
    ASSERT_TRUE(takeByOther(controlSuper | XCB_MOD_MASK_LOCK, Keys::s));
    const auto refused = hotKeys->registerHotKey(keyS, controlCommand, {0, 1});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), X11HotKeys::taken);
    // Nothing of it is left.
    EXPECT_TRUE(takeByOther(controlSuper, Keys::s));
}

TEST_F(HotKeys, AreRefusedOnKeysThatNoKeyboardHas) {
    const auto refused = hotKeys->registerHotKey(400, controlCommand, {0, 1});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), X11HotKeys::noSuchKey);
}

TEST_F(HotKeys, AreRefusedWithBitsThatAreNoModifier) {
    for (const std::uint32_t bits : {0x1U, 0x400U, 0x1101U, 0x80001100U}) {
        const auto refused = hotKeys->registerHotKey(keyS, bits, {0, 1});
        ASSERT_FALSE(refused) << bits;
        EXPECT_EQ(refused.error(), X11HotKeys::noSuchModifier) << bits;
    }
    EXPECT_TRUE(isFreeForOthers(Keys::s));
}

TEST_F(HotKeys, LeaveNothingGrabbed) {
    const auto reference = registered(keyS, controlCommand, 1);
    EXPECT_FALSE(isFreeForOthers(Keys::s));
    EXPECT_EQ(hotKeys->unregisterHotKey(reference), 0);
    EXPECT_TRUE(isFreeForOthers(Keys::s));
    registered(keyP, 0x300, 2);
    hotKeys.reset();
    EXPECT_TRUE(isFreeForOthers(Keys::p));
}

TEST_F(HotKeys, CanBeGivenUpWhileTheyAreHeld) {
    const auto reference = registered(keyF5, 0, 1);
    test::keyDown(desktop.connection(), Keys::f5);
    EXPECT_EQ(told(), Told{1});
    EXPECT_EQ(hotKeys->unregisterHotKey(reference), 0);
    test::keyUp(desktop.connection(), Keys::f5);
    settle();
    registered(keyF5, 0, 2);
    press({Keys::f5});
    EXPECT_EQ(told(), Told{2});
}

TEST_F(HotKeys, OutliveTheConnection) {
    registered(keyS, controlCommand, 1);
    loseConnection();
    const auto refused = hotKeys->registerHotKey(keyP, controlCommand, {0, 2});
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), X11HotKeys::notConnected);
    ASSERT_TRUE(connection->reopen());
    settle();
    press({control, super, Keys::s});
    EXPECT_EQ(told(), Told{1});
}

} // namespace
} // namespace kestrove::x11
