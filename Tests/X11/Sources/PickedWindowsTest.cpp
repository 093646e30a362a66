#include "Tests/X11/Sources/SourcesFixture.h"

namespace kestrove::test {
namespace {

/// Three programs, their windows ticked and the first in front and shared.
class PickedWindows : public SourcesFixture {
protected:
    void SetUp() override {
        tick({&red, &green, &blue});
        start();
        activate(red);
        ASSERT_TRUE(isActive(red.source()));
        ASSERT_TRUE(shows(red.color));
    }
    [[nodiscard]] bool isTicked(CaptureSource source) {
        const auto& ticked = settings().manualSources.get();
        return std::ranges::find(ticked, source) != ticked.end();
    }

    // Over one another, and partly over the displays' edge.
    Program red = startProgram("red", {300, 200, 500, 300}, 0xffff0000);
    Program green = startProgram("green", {350, 250, 500, 300}, 0xff00ff00);
    Program blue = startProgram("blue", {1000, 300, 500, 300}, 0xff0000ff);
};

TEST_F(PickedWindows, AreEachShownWhenTheyAreRaised) {
    for (const auto* program : {&green, &blue, &red, &blue}) {
        activate(*program);
        EXPECT_TRUE(isActive(program->source()));
        EXPECT_TRUE(shows(program->color));
        EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
    }
}

TEST_F(PickedWindows, KeepTheLastOneWhileAnotherProgramIsInFront) {
    activate(green);
    ASSERT_TRUE(shows(green.color));
    const auto other = startProgram("other", {400, 300, 400, 300}, 0xffffffff);
    const auto end = loop.now() + Seconds(2);
    ASSERT_TRUE(loop.runUntil([&] { return loop.now() > end; }));
    EXPECT_EQ(controller().activeSource().get(), green.source());
    EXPECT_TRUE(shows(green.color));
}

TEST_F(PickedWindows, GiveWayToOneAnotherWhenTheShownOneIsClosed) {
    red.window->destroy();
    ASSERT_TRUE(loop.runUntil([this] { return !isTicked(red.source()); }));
    EXPECT_NE(colorNow(), red.color);
    EXPECT_TRUE(reaches(CaptureSessionState::running()));
    EXPECT_TRUE(
        loop.runUntil([this] { return colorNow() == green.color || colorNow() == blue.color; }));
    // Following goes on among those that are left.
    for (const auto* program : {&blue, &green}) {
        activate(*program);
        EXPECT_TRUE(shows(program->color));
    }
    green.window->destroy();
    EXPECT_TRUE(shows(blue.color));
    EXPECT_EQ(settings().manualSources.get(), std::vector{blue.source()});
}

TEST_F(PickedWindows, MakeTheSessionWaitWhenTheLastOneIsClosed) {
    green.window->destroy();
    blue.window->destroy();
    ASSERT_TRUE(loop.runUntil([this] { return settings().manualSources.get().size() == 1; }))
        << "the refresh notices what is not shown";
    EXPECT_EQ(controller().activeSource().get(), red.source());
    red.window->destroy();
    EXPECT_TRUE(reaches(CaptureSessionState::waitingForSource()));
    EXPECT_NE(colorNow(), red.color);
    EXPECT_TRUE(settings().manualSources.get().empty());
    // The next pick is shown without another start.
    const auto late = startProgram("late", {300, 200, 500, 300}, 0xffff00ff);
    tick({&late});
    EXPECT_TRUE(shows(late.color));
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
}

TEST_F(PickedWindows, GiveWayToOneAnotherWhenTheProgramIsKilled) {
    kill(red);
    ASSERT_TRUE(loop.runUntil([this] { return !isTicked(red.source()); }));
    EXPECT_TRUE(
        loop.runUntil([this] { return colorNow() == green.color || colorNow() == blue.color; }));
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
}

TEST_F(PickedWindows, AreForgottenWhenTheirProgramDiesAndLeavesThemBehind) {
    // The window belongs to the connection, which may live on in a helper process.
    red.process->signal(SIGKILL);
    ASSERT_TRUE(loop.runUntil([this] { return !isTicked(red.source()); }));
    EXPECT_NE(controller().activeSource().get(), red.source());
    EXPECT_TRUE(reaches(CaptureSessionState::running()));
    EXPECT_TRUE(
        loop.runUntil([this] { return colorNow() == green.color || colorNow() == blue.color; }));
}

TEST_F(PickedWindows, StayPickedWhileTheyAreMinimised) {
    minimise(red);
    const auto end = loop.now() + Seconds(11);
    ASSERT_TRUE(loop.runUntil([&] { return loop.now() > end; })) << "two refreshes";
    EXPECT_TRUE(isTicked(red.source()));
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
    activate(green);
    EXPECT_TRUE(shows(green.color));
    // Brought back.
    activate(red);
    EXPECT_TRUE(shows(red.color));
    EXPECT_EQ(settings().manualSources.get().size(), 3U);
}

TEST_F(PickedWindows, LetTheOnlyMinimisedOneGoOnWhenItIsBack) {
    controller().toggleSource(green.source(), std::nullopt);
    controller().toggleSource(blue.source(), std::nullopt);
    ASSERT_EQ(settings().manualSources.get(), std::vector{red.source()});
    minimise(red);
    const auto end = loop.now() + Seconds(11);
    ASSERT_TRUE(loop.runUntil([&] { return loop.now() > end; }));
    EXPECT_EQ(controller().sessionState().get(), CaptureSessionState::running());
    activate(red);
    red.window->fillRectangle({0, 0, 500, 300}, 0xffffff00);
    EXPECT_TRUE(shows(0xffffff00));
}

} // namespace
} // namespace kestrove::test
