#include "Tests/Contract/ContractSuites.h"

namespace kestrove::contract {

TEST_P(ApplicationContract, BecomesActiveWhenAWindowOfItsOwnGetsTheFocus) {
    const auto other = openWindow();
    const auto own = desktop().openWindow({.processID = desktop().ownProcess()});
    desktop().focusWindow(other);
    EXPECT_TRUE(waitUntil([&] { return !desktop().application().isActive(); }));
    int told = 0;
    const auto subscription = desktop().application().onBecameActive([&] { ++told; });
    desktop().focusWindow(own);
    EXPECT_EQ(told, 0) << "only the main loop tells";
    EXPECT_TRUE(waitUntil([&] { return told == 1 && desktop().application().isActive(); }));
    desktop().focusWindow(other);
    EXPECT_TRUE(waitUntil([&] { return !desktop().application().isActive(); }));
    desktop().settle();
    EXPECT_EQ(told, 1);
}

TEST_P(ApplicationContract, ComesToTheFrontOverAnotherApplication) {
    const auto other = openWindow();
    desktop().openWindow({.processID = desktop().ownProcess()});
    desktop().focusWindow(other);
    EXPECT_TRUE(waitUntil([&] { return !desktop().application().isActive(); }));
    desktop().application().activateIgnoringOtherApps();
    EXPECT_TRUE(waitUntil([&] { return desktop().application().isActive(); }));
}

TEST_P(ApplicationContract, KeepsTheActivationPolicyThatItWasGiven) {
    desktop().application().setActivationPolicy(ActivationPolicy::accessory);
    EXPECT_EQ(desktop().application().activationPolicy(), ActivationPolicy::accessory);
    desktop().application().setActivationPolicy(ActivationPolicy::regular);
    EXPECT_EQ(desktop().application().activationPolicy(), ActivationPolicy::regular);
}

} // namespace kestrove::contract
