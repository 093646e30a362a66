#include "Core/GlobalShortcuts/HotKeyServiceRegistrar.h"
#include "Platform/Simulated/SimulatedPlatform.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace kestrove {
namespace {

constexpr std::uint32_t keyS = 1;
constexpr std::uint32_t controlCommand = 0x1100;

class HotKeyServiceRegistrarTest : public testing::Test {
protected:
    HotKeyRegistrar::Delivery remember() {
        return [this](std::uint32_t id) { delivered.push_back(id); };
    }
    void press() { platform.desktop.keyboard().press({keyS, controlCommand}); }

    SimulatedPlatform platform;
    RecordingLog log;
    std::vector<std::uint32_t> delivered;
    std::optional<HotKeyServiceRegistrar> registrar{std::in_place, platform.loop, platform.hotKeys,
                                                    log, "dev.kestrove"};
};

TEST_F(HotKeyServiceRegistrarTest, APressIsDeliveredInATurnOfItsOwn) {
    ASSERT_EQ(registrar->installHandler(remember()), 0);
    ASSERT_EQ(registrar->registerHotKey(keyS, controlCommand, 7), 0);
    bool isDeliveredInsideTheService = true;
    const auto watching = platform.hotKeys.installHandler([&](HotKeyIdentifier identifier) {
        EXPECT_EQ(identifier, (HotKeyIdentifier{0x6B737476, 7})) << "\"kstv\"";
        isDeliveredInsideTheService = !delivered.empty();
    });
    press();
    platform.loop.runUntilIdle();
    EXPECT_FALSE(isDeliveredInsideTheService);
    EXPECT_EQ(delivered, std::vector{7U});
}

TEST_F(HotKeyServiceRegistrarTest, ASecondHandlerReplacesTheFirst) {
    std::vector<std::uint32_t> earlier;
    ASSERT_EQ(registrar->installHandler([&](std::uint32_t id) { earlier.push_back(id); }), 0);
    ASSERT_EQ(registrar->registerHotKey(keyS, controlCommand, 7), 0);
    // The service would refuse a second handler.
    platform.desktop.keyboard().nextInstallStatuses = {-1};
    ASSERT_EQ(registrar->installHandler(remember()), 0);
    press();
    platform.loop.runUntilIdle();
    EXPECT_TRUE(earlier.empty());
    EXPECT_EQ(delivered, std::vector{7U});
}

TEST_F(HotKeyServiceRegistrarTest, APressOnItsWayReachesTheDeliveryOfItsArrival) {
    ASSERT_EQ(registrar->installHandler([](std::uint32_t) { FAIL(); }), 0);
    ASSERT_EQ(registrar->registerHotKey(keyS, controlCommand, 7), 0);
    press();
    ASSERT_EQ(registrar->installHandler(remember()), 0);
    platform.loop.runUntilIdle();
    EXPECT_EQ(delivered, std::vector{7U});
}

TEST_F(HotKeyServiceRegistrarTest, AHandlerThatCannotBeInstalledIsLoggedAndTriedAgain) {
    platform.desktop.keyboard().nextInstallStatuses = {-9870, -9870};
    EXPECT_EQ(registrar->installHandler(remember()), -9870);
    EXPECT_EQ(registrar->installHandler(remember()), -9870);
    const RecordingLog::Line line{"dev.kestrove", "", LogLevel::error,
                                  "[kestrove] InstallEventHandler failed: -9870"};
    EXPECT_EQ(log.lines, (std::vector{line, line})) << "once a call";
    EXPECT_EQ(registrar->installHandler(remember()), 0);
    ASSERT_EQ(registrar->registerHotKey(keyS, controlCommand, 7), 0);
    press();
    platform.loop.runUntilIdle();
    EXPECT_EQ(delivered, std::vector{7U});
}

TEST_F(HotKeyServiceRegistrarTest, AStatusIsPassedOnUnchangedAndUnlogged) {
    platform.desktop.keyboard().takeByOtherProgram({keyS, controlCommand});
    EXPECT_EQ(registrar->registerHotKey(keyS, controlCommand, 7), SimulatedKeyboard::taken);
    EXPECT_EQ(registrar->unregisterHotKey(7), -50) << "nothing was kept";
    platform.desktop.keyboard().giveBackByOtherProgram({keyS, controlCommand});
    EXPECT_EQ(registrar->registerHotKey(keyS, controlCommand, 7), 0);
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(HotKeyServiceRegistrarTest, AnUnknownIdentifierAsksNothingOfTheService) {
    EXPECT_EQ(registrar->unregisterHotKey(7), -50);
    EXPECT_EQ(platform.hotKeys.unregisterCallCount(), 0);
}

TEST_F(HotKeyServiceRegistrarTest, AFailedUnregistrationCanBeTriedAgain) {
    ASSERT_EQ(registrar->registerHotKey(keyS, controlCommand, 7), 0);
    platform.desktop.keyboard().nextUnregisterStatuses = {-3};
    EXPECT_EQ(registrar->unregisterHotKey(7), -3);
    EXPECT_EQ(platform.hotKeys.registeredCount(), 1U);
    EXPECT_EQ(registrar->unregisterHotKey(7), 0);
    EXPECT_EQ(platform.hotKeys.registeredCount(), 0U);
    EXPECT_EQ(registrar->unregisterHotKey(7), -50);
}

TEST_F(HotKeyServiceRegistrarTest, ItsEndLeavesTheHotKeysAndDropsPresses) {
    ASSERT_EQ(registrar->installHandler(remember()), 0);
    ASSERT_EQ(registrar->registerHotKey(keyS, controlCommand, 7), 0);
    press();
    registrar.reset();
    platform.loop.runUntilIdle();
    EXPECT_TRUE(delivered.empty());
    EXPECT_EQ(platform.hotKeys.registeredCount(), 1U);
}

} // namespace
} // namespace kestrove
