#include "Platform/Linux/Session/UserSession.h"

#include "Tests/Support/MessageBus/MockService.h"
#include "Tests/Support/MessageBus/PrivateBus.h"
#include "Tests/Support/PollMainLoop/PollMainLoop.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace kestrove {

namespace {

using Told = std::vector<std::string>;
using test::MockLogind;
using test::MockScreenSaver;

class UserSessionTest : public testing::Test {
protected:
    UserSessionTest() {
        setenv("DBUS_SYSTEM_BUS_ADDRESS", systemBus.address().c_str(), 1);
        setenv("DBUS_SESSION_BUS_ADDRESS", sessionBus.address().c_str(), 1);
    }

    void open() {
        session.emplace(loop, loop, log, "dev.kestrove");
        watching = {
            session->signals.resigned.subscribe([this] { told.emplace_back("resigned"); }),
            session->signals.becameActive.subscribe([this] { told.emplace_back("active"); }),
            session->signals.slept.subscribe([this] { told.emplace_back("slept"); }),
            session->signals.woke.subscribe([this] { told.emplace_back("woke"); })};
    }
    void openAndSettle() {
        open();
        settle();
    }
    /// What was sent on either bus before has arrived, and what was asked then is answered.
    void settle() {
        settleSystemBus();
        settleSystemBus(); // a property that is told to have changed is asked for
        // Whoever is new on the session's bus is asked, after all that came before.
        MockScreenSaver last(sessionBus, loop, "org.cinnamon.ScreenSaver");
        ASSERT_TRUE(loop.spinUntil([&] { return last.questionCount > 0; }));
    }
    void settleSystemBus() {
        if (!logind)
            logind = std::make_unique<MockLogind>(systemBus, loop);
        // Again and again, because at the start nobody listens yet.
        ASSERT_TRUE(loop.spinUntil([&] {
            logind->sendPrepareForSleep(true);
            return loop.spinUntil([&] { return std::ranges::count(told, "slept") > 0; },
                                  Seconds(0.05));
        }));
        logind->sendPrepareForSleep(false);
        ASSERT_TRUE(loop.spinUntil([&] { return std::ranges::count(told, "woke") > 0; }));
        std::erase(told, "slept");
        std::erase(told, "woke");
    }
    [[nodiscard]] bool comesTo(const Told& expected) {
        return loop.spinUntil([&] { return told == expected; });
    }
    [[nodiscard]] std::vector<std::string> lines() const {
        std::vector<std::string> texts;
        for (const auto& line : log.lines)
            texts.push_back(line.text);
        return texts;
    }

    test::PrivateBus systemBus;
    test::PrivateBus sessionBus;
    PollMainLoop loop;
    RecordingLog log;
    std::unique_ptr<MockLogind> logind;
    std::optional<UserSession> session;
    std::array<Subscription, 4> watching;
    Told told;
};

TEST_F(UserSessionTest, TheLockedHintIsALock) {
    logind = std::make_unique<MockLogind>(systemBus, loop);
    openAndSettle();
    logind->setLockedHint(true);
    EXPECT_TRUE(comesTo({"resigned"}));
    logind->setLockedHint(false);
    EXPECT_TRUE(comesTo({"resigned", "active"}));
    EXPECT_EQ(lines(), Told());
}

TEST_F(UserSessionTest, TheSignalsOfALockerAreALock) {
    logind = std::make_unique<MockLogind>(systemBus, loop);
    openAndSettle();
    logind->sendLock();
    EXPECT_TRUE(comesTo({"resigned"}));
    logind->sendUnlock();
    EXPECT_TRUE(comesTo({"resigned", "active"}));
}

TEST_F(UserSessionTest, AnotherSessionOnTheSeatIsALock) {
    logind = std::make_unique<MockLogind>(systemBus, loop);
    openAndSettle();
    logind->setActive(false);
    EXPECT_TRUE(comesTo({"resigned"}));
    logind->setActive(true);
    EXPECT_TRUE(comesTo({"resigned", "active"}));
}

TEST_F(UserSessionTest, SleepIsToldApart) {
    logind = std::make_unique<MockLogind>(systemBus, loop);
    openAndSettle();
    logind->sendPrepareForSleep(true);
    EXPECT_TRUE(comesTo({"slept"}));
    logind->sendPrepareForSleep(false);
    EXPECT_TRUE(comesTo({"slept", "woke"}));
}

TEST_F(UserSessionTest, EveryScreenSaverIsHeard) {
    for (const auto* const name :
         {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver", "org.xfce.ScreenSaver",
          "org.cinnamon.ScreenSaver", "org.mate.ScreenSaver"}) {
        MockScreenSaver saver(sessionBus, loop, name);
        told.clear();
        open();
        ASSERT_TRUE(loop.spinUntil([&] { return saver.questionCount > 0; }));
        saver.setActive(true);
        EXPECT_TRUE(comesTo({"resigned"})) << name;
        saver.setActive(false);
        EXPECT_TRUE(comesTo({"resigned", "active"})) << name;
    }
}

TEST_F(UserSessionTest, WhatWasLockedBeforeTheStartIsTold) {
    logind = std::make_unique<MockLogind>(
        systemBus, loop, MockLogind::State{.isActive = true, .hasLockedHint = true});
    open();
    EXPECT_TRUE(comesTo({"resigned"}));
    logind->setLockedHint(false);
    EXPECT_TRUE(comesTo({"resigned", "active"}));
}

TEST_F(UserSessionTest, AScreenSaverThatWasActiveBeforeTheStartIsTold) {
    MockScreenSaver saver(sessionBus, loop, "org.gnome.ScreenSaver", true);
    open();
    EXPECT_TRUE(comesTo({"resigned"}));
    saver.setActive(false);
    EXPECT_TRUE(comesTo({"resigned", "active"}));
}

TEST_F(UserSessionTest, ALockThatSeveralTellOfIsToldOnce) {
    logind = std::make_unique<MockLogind>(systemBus, loop);
    MockScreenSaver saver(sessionBus, loop, "org.gnome.ScreenSaver");
    openAndSettle();
    logind->sendLock();
    saver.setActive(true);
    logind->setLockedHint(true);
    settle();
    EXPECT_EQ(told, Told{"resigned"});
    logind->setLockedHint(false);
    settle();
    EXPECT_EQ(told, Told{"resigned"}) << "the screen saver is still there";
    saver.setActive(false);
    EXPECT_TRUE(comesTo({"resigned", "active"})) << "the request ends with what it led to";
    settle();
    EXPECT_EQ(told, (Told{"resigned", "active"}));
}

TEST_F(UserSessionTest, AScreenSaverThatDiesLockedLeavesItOpenUntilItIsBack) {
    auto saver = std::make_unique<MockScreenSaver>(sessionBus, loop, "org.xfce.ScreenSaver");
    openAndSettle();
    saver->setActive(true);
    ASSERT_TRUE(comesTo({"resigned"}));
    saver.reset();
    ASSERT_TRUE(comesTo({"resigned", "woke"}));
    saver = std::make_unique<MockScreenSaver>(sessionBus, loop, "org.xfce.ScreenSaver");
    EXPECT_TRUE(comesTo({"resigned", "woke", "active"}));
    saver->setActive(true);
    EXPECT_TRUE(comesTo({"resigned", "woke", "active", "resigned"}));
}

TEST_F(UserSessionTest, ALogindThatIsStartedAgainIsFoundAgain) {
    logind = std::make_unique<MockLogind>(systemBus, loop);
    openAndSettle();
    logind->setLockedHint(true);
    ASSERT_TRUE(comesTo({"resigned"}));
    logind.reset();
    ASSERT_TRUE(comesTo({"resigned", "woke"}));
    logind = std::make_unique<MockLogind>(systemBus, loop);
    ASSERT_TRUE(comesTo({"resigned", "woke", "active"}));
    logind->setActive(false);
    EXPECT_TRUE(comesTo({"resigned", "woke", "active", "resigned"}));
    logind->setActive(true);
    EXPECT_TRUE(comesTo({"resigned", "woke", "active", "resigned", "active"}));
}

TEST_F(UserSessionTest, WithoutLogindTheLogSaysSoOnce) {
    open();
    ASSERT_TRUE(loop.spinUntil([&] { return !log.lines.empty(); }));
    EXPECT_EQ(lines(),
              Told{"logind does not know this session: its lock and sleep are not noticed"});
    // The screen savers are heard all the same, and a logind that comes later too.
    MockScreenSaver saver(sessionBus, loop, "org.gnome.ScreenSaver");
    saver.setActive(true);
    EXPECT_TRUE(comesTo({"resigned"}));
    saver.setActive(false);
    EXPECT_TRUE(comesTo({"resigned", "active"}));
    logind = std::make_unique<MockLogind>(systemBus, loop, MockLogind::State{.isActive = false});
    EXPECT_TRUE(comesTo({"resigned", "active", "resigned"}));
    EXPECT_EQ(lines().size(), 1U);
}

TEST_F(UserSessionTest, WithoutBusesTheLogSaysSoOnceEach) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/system", 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/session", 1);
    open();
    ASSERT_TRUE(loop.spinUntil([&] { return log.lines.size() >= 2; }));
    loop.runUntilIdle();
    EXPECT_EQ(log.lines.size(), 2U);
    EXPECT_EQ(told, Told());
}

TEST_F(UserSessionTest, ABusThatDiesWhileLockedLeavesItOpenAndIsLoggedOnce) {
    logind = std::make_unique<MockLogind>(systemBus, loop);
    auto saver = std::make_unique<MockScreenSaver>(sessionBus, loop, "org.gnome.ScreenSaver");
    openAndSettle();
    saver->setActive(true);
    ASSERT_TRUE(comesTo({"resigned"}));
    sessionBus.stop();
    EXPECT_TRUE(comesTo({"resigned", "woke"}));
    loop.runUntilIdle();
    EXPECT_EQ(lines(),
              Told{"the D-Bus session bus has gone: locks that are told there are not noticed"});
    // The other one goes on.
    logind->setLockedHint(true);
    EXPECT_TRUE(comesTo({"resigned", "woke", "resigned"}));
}

TEST_F(UserSessionTest, InEveryOrderItEndsUpWithWhatIsSo) {
    logind = std::make_unique<MockLogind>(systemBus, loop);
    MockScreenSaver saver(sessionBus, loop, "org.gnome.ScreenSaver");
    openAndSettle();
    std::mt19937 random(7);
    bool active = true, hint = false, saving = false;
    for (int round = 0; round < 40; ++round) {
        for (auto changes = random() % 4; changes > 0; --changes) {
            switch (random() % 3) {
            case 0:
                logind->setActive(active = !active);
                break;
            case 1:
                logind->setLockedHint(hint = !hint);
                break;
            default:
                saver.setActive(saving = !saving);
                break;
            }
        }
        settle();
        const bool isAway = !active || hint || saving;
        EXPECT_EQ(!told.empty() && told.back() == "resigned", isAway) << "round " << round;
    }
    for (std::size_t index = 0; index < told.size(); ++index)
        EXPECT_EQ(told[index], index % 2 == 0 ? "resigned" : "active") << "no change is told twice";
}

} // namespace

} // namespace kestrove
