#include "Tests/Contract/ContractSuites.h"

#include <vector>

namespace kestrove::contract {

namespace {

// The physical keys that a US keyboard labels S and P, and the bits of Control and Command.
constexpr std::uint32_t keyS = 1;
constexpr std::uint32_t keyP = 35;
constexpr std::uint32_t controlCommand = 0x1100;

constexpr HotKeyIdentifier first{0x74657374, 1};
constexpr HotKeyIdentifier second{0x74657374, 2};

} // namespace

TEST_P(HotKeysContract, EveryPressReachesTheHandlerWithItsIdentifier) {
    std::vector<HotKeyIdentifier> pressed;
    const auto handler =
        desktop().hotKeys().installHandler([&](auto identifier) { pressed.push_back(identifier); });
    ASSERT_TRUE(handler);
    ASSERT_TRUE(desktop().hotKeys().registerHotKey(keyS, controlCommand, first));
    ASSERT_TRUE(desktop().hotKeys().registerHotKey(keyP, controlCommand, second));
    desktop().pressKey(keyP, controlCommand);
    EXPECT_TRUE(pressed.empty()) << "only the main loop tells";
    EXPECT_TRUE(waitUntil([&] { return pressed == std::vector{second}; }));
    desktop().pressKey(keyS, controlCommand);
    EXPECT_TRUE(waitUntil([&] { return pressed == std::vector{second, first}; }));
}

TEST_P(HotKeysContract, AKeyThatIsHeldIsOnePress) {
    int pressed = 0;
    const auto handler = desktop().hotKeys().installHandler([&](auto) { ++pressed; });
    ASSERT_TRUE(desktop().hotKeys().registerHotKey(keyS, controlCommand, first));
    desktop().holdKey(keyS, controlCommand);
    EXPECT_TRUE(waitUntil([&] { return pressed >= 1; }));
    desktop().settle();
    EXPECT_EQ(pressed, 1);
}

TEST_P(HotKeysContract, OtherModifiersAreAnotherKey) {
    int pressed = 0;
    const auto handler = desktop().hotKeys().installHandler([&](auto) { ++pressed; });
    ASSERT_TRUE(desktop().hotKeys().registerHotKey(keyS, controlCommand, first));
    desktop().pressKey(keyS, 0);
    desktop().pressKey(keyP, controlCommand);
    desktop().settle();
    EXPECT_EQ(pressed, 0);
}

TEST_P(HotKeysContract, OneCombinationCanBeRegisteredOnce) {
    const auto registered = desktop().hotKeys().registerHotKey(keyS, controlCommand, first);
    ASSERT_TRUE(registered);
    const auto again = desktop().hotKeys().registerHotKey(keyS, controlCommand, second);
    ASSERT_FALSE(again);
    EXPECT_NE(again.error(), 0);
    EXPECT_EQ(desktop().hotKeys().unregisterHotKey(*registered), 0);
    EXPECT_TRUE(desktop().hotKeys().registerHotKey(keyS, controlCommand, second));
}

TEST_P(HotKeysContract, WhatAnotherProgramHasCannotBeRegistered) {
    desktop().takeHotKeyByOtherProgram(keyS, controlCommand);
    const auto registered = desktop().hotKeys().registerHotKey(keyS, controlCommand, first);
    ASSERT_FALSE(registered);
    EXPECT_NE(registered.error(), 0);
    EXPECT_TRUE(desktop().hotKeys().registerHotKey(keyP, controlCommand, second));
}

TEST_P(HotKeysContract, AnUnregisteredKeyAndAnEndedHandlerAreToldNothing) {
    int pressed = 0;
    int toldOther = 0;
    auto handler = desktop().hotKeys().installHandler([&](auto) { ++pressed; });
    const auto other = desktop().hotKeys().installHandler([&](auto) { ++toldOther; });
    const auto registered = desktop().hotKeys().registerHotKey(keyS, controlCommand, first);
    ASSERT_TRUE(desktop().hotKeys().registerHotKey(keyP, controlCommand, second));
    ASSERT_TRUE(handler && other && registered);
    EXPECT_EQ(desktop().hotKeys().unregisterHotKey(*registered), 0);
    desktop().pressKey(keyS, controlCommand);
    desktop().settle();
    EXPECT_EQ(pressed, 0);
    handler->cancel();
    desktop().pressKey(keyP, controlCommand);
    EXPECT_TRUE(waitUntil([&] { return toldOther == 1; }));
    EXPECT_EQ(pressed, 0);
}

} // namespace kestrove::contract
