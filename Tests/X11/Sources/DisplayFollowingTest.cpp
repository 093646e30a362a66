#include "Tests/X11/Sources/SourcesFixture.h"

namespace kestrove::test {
namespace {

/// How long things must have been still, and the time of one frame at 30 a second.
constexpr Seconds debounce{0.15};
constexpr Seconds frame{1.0 / 30};

class DisplayFollowing : public SourcesFixture {
protected:
    /// The pointer goes there, and the application has noticed; the clock stands still.
    void pointAt(int x, int y) {
        const auto before = loop.delaysOf(debounce);
        server().movePointer(x, y);
        ASSERT_TRUE(loop.spinUntil([&] { return loop.delaysOf(debounce) > before; }));
    }
    /// What the session was from now on.
    void record() {
        // The start has the tracker tell where the pointer is, which is to be acted on first.
        bool isActedOn = false;
        loop.post([&] { isActedOn = true; });
        ASSERT_TRUE(loop.spinUntil([&] { return isActedOn; }));
        m_states = controller().sessionState().subscribe(
            [this](const CaptureSessionState& state) { states.push_back(state.kind()); });
        states.clear();
    }

    using Kind = CaptureSessionState::Kind;
    std::vector<Kind> states;

private:
    Subscription m_states;
};

TEST_F(DisplayFollowing, SwitchesOnceThePointerHasRestedOnAnotherDisplayAndNotBefore) {
    start();
    ASSERT_TRUE(isActive(display("LEFT")));
    ASSERT_TRUE(shows(leftColor));
    ASSERT_NO_FATAL_FAILURE(record());

    // There and back before it has rested.
    pointAt(1300, 20);
    loop.advance(debounce - Seconds(0.001));
    pointAt(30, 20);
    loop.advance(debounce + frame);
    EXPECT_TRUE(loop.spinUntil([this] { return colorNow() == leftColor; }));
    // On and on.
    for (int x = 1300; x < 1400; x += 10) {
        pointAt(x, 20);
        loop.advance(debounce - Seconds(0.001));
    }
    EXPECT_EQ(controller().activeSource().get(), display("LEFT"));
    EXPECT_TRUE(states.empty());

    loop.advance(Seconds(0.001));
    EXPECT_TRUE(
        loop.spinUntil([this] { return !states.empty() && states.back() == Kind::running; }));
    EXPECT_EQ(states, (std::vector{Kind::switching, Kind::running}));
    EXPECT_EQ(controller().activeSource().get(), display("RIGHT"));
    loop.advance(frame);
    EXPECT_TRUE(loop.spinUntil([this] { return colorNow() == rightColor; }));
}

TEST_F(DisplayFollowing, StaysWhereThePointerMovesOnTheSameDisplay) {
    start();
    ASSERT_TRUE(shows(leftColor));
    ASSERT_NO_FATAL_FAILURE(record());
    pointAt(600, 700);
    loop.advance(debounce + frame);
    pointAt(40, 30);
    loop.advance(debounce + frame);
    EXPECT_TRUE(loop.spinUntil([this] { return colorNow() == leftColor; }));
    EXPECT_TRUE(states.empty());
}

TEST_F(DisplayFollowing, ShowsTheDisplayOfTheFocusedApplication) {
    const auto onLeft = startProgram("onleft", {100, 100, 300, 200}, 0xff00ff00);
    const auto onRight = startProgram("onright", {1400, 100, 300, 200}, 0xff00ffff);
    activate(onLeft);
    settings().followMode.set(FollowMode::focusedApp);
    start();
    ASSERT_TRUE(isActive(display("LEFT")));
    ASSERT_TRUE(shows(leftColor));

    const auto before = loop.delaysOf(debounce);
    activate(onRight);
    ASSERT_TRUE(loop.spinUntil([&] { return loop.delaysOf(debounce) > before; }));
    EXPECT_EQ(controller().activeSource().get(), display("LEFT"));
    loop.advance(debounce);
    EXPECT_TRUE(
        loop.spinUntil([&] { return controller().activeSource().get() == display("RIGHT"); }));
    EXPECT_TRUE(shows(rightColor));
    activate(onLeft);
    EXPECT_TRUE(isActive(display("LEFT")));
    // The pointer counts for nothing here.
    server().movePointer(1900, 500);
    EXPECT_TRUE(shows(leftColor));
}

TEST_F(DisplayFollowing, ComesBackByItselfToAPickedDisplayThatWasPulledAndPlugged) {
    ASSERT_NO_FATAL_FAILURE(tick(display("RIGHT")));
    start();
    ASSERT_TRUE(shows(rightColor));
    server().removeMonitor("RIGHT");
    ASSERT_TRUE(
        reaches(CaptureSessionState::recoveryRequired(CaptureRecoveryReason::streamStopped)));
    EXPECT_EQ(controller().activeSource().get(), std::nullopt);
    EXPECT_NE(colorNow(), rightColor);
    server().setMonitor({"RIGHT", rightPlace});
    EXPECT_TRUE(reaches(CaptureSessionState::running()));
    EXPECT_TRUE(isActive(display("RIGHT")));
    EXPECT_TRUE(shows(rightColor));
}

TEST_F(DisplayFollowing, IsNotTakenUpAgainByItselfForADisplayThatNobodyPicked) {
    server().movePointer(1300, 20);
    start();
    ASSERT_TRUE(shows(rightColor));
    server().removeMonitor("RIGHT");
    ASSERT_TRUE(
        reaches(CaptureSessionState::recoveryRequired(CaptureRecoveryReason::streamStopped)));
    server().setMonitor({"RIGHT", rightPlace});
    const auto isListed = [this] {
        return controller().availableSources().get().displays.size() == 2;
    };
    ASSERT_TRUE(loop.runUntil(isListed));
    const auto end = loop.now() + Seconds(20);
    ASSERT_TRUE(loop.runUntil([&] { return loop.now() > end; }));
    EXPECT_EQ(controller().sessionState().get(),
              CaptureSessionState::recoveryRequired(CaptureRecoveryReason::streamStopped));
    start();
    EXPECT_TRUE(controller().activeSource().get().has_value());
}

} // namespace
} // namespace kestrove::test
