#include "Tests/Support/MessageBus/ServedSession.h"
#include "Tests/X11/Sources/SourcesFixture.h"

#include <functional>
#include <ostream>

namespace kestrove::test {
namespace {

/// One of the ways in which a desktop tells that the user is away and back.
struct Lock {
    std::string name;
    std::function<void(ServedSession&)> begin;
    std::function<void(ServedSession&)> end;
};

void PrintTo(const Lock& lock, std::ostream* out) {
    *out << lock.name;
}

/// Two ticked windows, the first of them shared, in a session with logind and a screen saver.
class SessionLock : public SourcesFixture, public testing::WithParamInterface<Lock> {
protected:
    void SetUp() override {
        tick({&red, &green});
        start();
        activate(red);
        ASSERT_TRUE(isActive(red.source()));
        ASSERT_TRUE(shows(red.color));
    }
    [[nodiscard]] bool isTicked(const Program& program) {
        const auto& ticked = settings().manualSources.get();
        return std::ranges::find(ticked, program.source()) != ticked.end();
    }
    void goAway() {
        const auto before = resigned;
        GetParam().begin(services);
        ASSERT_TRUE(loop.spinUntil([&] { return resigned > before; }));
    }
    void comeBack() {
        const auto before = back;
        GetParam().end(services);
        ASSERT_TRUE(loop.spinUntil([&] { return back > before; }));
    }
    void passARefresh() {
        const auto end = loop.now() + Seconds(6);
        ASSERT_TRUE(loop.runUntil([&] { return loop.now() > end; }));
    }

    int resigned = 0;
    int back = 0;
    Subscription countsResigned = session.resigned.subscribe([this] { ++resigned; });
    Subscription countsBack = session.becameActive.subscribe([this] { ++back; });
    ServedSession services{loop, watching, session};
    Program red = startProgram("red", {300, 200, 500, 300}, 0xffff0000);
    Program green = startProgram("green", {350, 250, 500, 300}, 0xff00ff00);
};

TEST_P(SessionLock, StopsNothing) {
    goAway();
    passARefresh();
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
    EXPECT_TRUE(shows(red.color));
    comeBack();
    passARefresh();
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
    EXPECT_TRUE(isTicked(red) && isTicked(green));
}

TEST_P(SessionLock, KeepsAWindowThatIsClosedMeanwhileUntilTheUserIsBack) {
    goAway();
    green.window->destroy();
    passARefresh();
    EXPECT_TRUE(isTicked(green)) << "nobody can tell whether it is gone";
    comeBack();
    EXPECT_TRUE(loop.runUntil([this] { return !isTicked(green); }));
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
    EXPECT_TRUE(shows(red.color));
}

TEST_P(SessionLock, SaysThatTheSharedWindowIsGoneAndGoesOnByHand) {
    // Closing the focused window would give the focus to ours, which says that the user is back.
    const auto other = startProgram("other", {800, 500, 200, 150}, 0xffffffff);
    goAway();
    red.window->destroy();
    EXPECT_TRUE(
        reaches(CaptureSessionState::recoveryRequired(CaptureRecoveryReason::streamStopped)));
    EXPECT_NE(colorNow(), red.color) << "never a stale frame";
    passARefresh();
    EXPECT_TRUE(isTicked(red));
    comeBack();
    EXPECT_TRUE(loop.runUntil([this] { return !isTicked(red); }));
    controller().start();
    EXPECT_TRUE(reaches(CaptureSessionState::running()));
    EXPECT_TRUE(shows(green.color));
}

INSTANTIATE_TEST_SUITE_P(
    Told, SessionLock,
    testing::Values(Lock{"LockedHint", [](auto& session) { session.logind.setLockedHint(true); },
                         [](auto& session) { session.logind.setLockedHint(false); }},
                    Lock{"Signals", [](auto& session) { session.logind.sendLock(); },
                         [](auto& session) { session.logind.sendUnlock(); }},
                    Lock{"Seat", [](auto& session) { session.logind.setActive(false); },
                         [](auto& session) { session.logind.setActive(true); }},
                    Lock{"ScreenSaver", [](auto& session) { session.screenSaver.setActive(true); },
                         [](auto& session) { session.screenSaver.setActive(false); }}),
    [](const auto& tested) { return tested.param.name; });

class SessionSleep : public SessionLock {};

TEST_P(SessionSleep, LeavesItOpenUntilTheUserIsBack) {
    int slept = 0, woke = 0;
    const auto countsSlept = session.slept.subscribe([&] { ++slept; });
    const auto countsWoke = session.woke.subscribe([&] { ++woke; });
    services.logind.sendPrepareForSleep(true);
    ASSERT_TRUE(loop.spinUntil([&] { return slept > 0; }));
    green.window->destroy();
    services.logind.sendPrepareForSleep(false);
    ASSERT_TRUE(loop.spinUntil([&] { return woke > 0; }));
    passARefresh();
    EXPECT_TRUE(isTicked(green)) << "the lock screen may still be up";
    goAway();
    comeBack();
    EXPECT_TRUE(loop.runUntil([this] { return !isTicked(green); }));
    EXPECT_TRUE(shows(red.color));
}

INSTANTIATE_TEST_SUITE_P(
    Told, SessionSleep,
    testing::Values(Lock{"ScreenSaver", [](auto& session) { session.screenSaver.setActive(true); },
                         [](auto& session) { session.screenSaver.setActive(false); }}),
    [](const auto& tested) { return tested.param.name; });

} // namespace
} // namespace kestrove::test
