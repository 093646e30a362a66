#include "Tests/Unit/Core/CaptureEngine/CaptureEngineFixture.h"

#include <algorithm>

namespace kestrove {
namespace {

/// What happens while a reconfiguration waits for the platform.
class CaptureEngineOverlapTest : public CaptureEngineFixture {
protected:
    void expectOvertaken(const SharedResult& result) {
        ASSERT_TRUE(*result);
        ASSERT_FALSE(**result);
        EXPECT_EQ(coordinates((*result)->error()).domain, "kestrove.CaptureEngine");
    }
    void expectStopped() {
        EXPECT_EQ(engine->currentSource(), std::nullopt);
        EXPECT_EQ(capture.capturingStreams(), 0);
        EXPECT_EQ(layer.shown, std::nullopt);
    }
};

TEST_F(CaptureEngineOverlapTest, ASecondSwitchWaitsForTheFirstAndWins) {
    capture.hold("start");
    const auto first = launchSwitch(display1);
    const auto second = launchSwitch(display2);
    loop.runUntilIdle();
    EXPECT_EQ(calls.take().back(), "start 1");
    capture.release("start");
    loop.runUntilIdle();
    EXPECT_EQ(calls.take(), (Calls{"flush", "content desktop all", "filter 1", "configuration 1"}));
    EXPECT_EQ(**first, CaptureResult(Size{2000, 1600}));
    EXPECT_EQ(**second, CaptureResult(Size{1920, 1080}));
    EXPECT_EQ(engine->currentSource(), display2);
    EXPECT_EQ(capture.capturingStreams(), 1);
}

TEST_F(CaptureEngineOverlapTest, ASlowQueryOfAnEarlierSwitchDoesNotOvertakeALaterOne) {
    runOnDisplay1();
    capture.hold("content");
    launchSwitch(smallWindow);
    launchSwitch(display2);
    loop.runUntilIdle();
    capture.releaseOne("content");
    loop.runUntilIdle();
    EXPECT_EQ(engine->currentSource(), smallWindow);
    capture.release("content");
    loop.runUntilIdle();
    EXPECT_EQ(engine->currentSource(), display2);
    EXPECT_EQ(stream(1).filter, ContentFilter(DisplayFilter(2, {})));
    EXPECT_EQ(stream(1).configuration.width, 1920);
}

TEST_F(CaptureEngineOverlapTest, AFailedSwitchHandsTheTurnOn) {
    launchSwitch(CaptureSource::display(77));
    const auto second = launchSwitch(display2);
    loop.runUntilIdle();
    EXPECT_TRUE((*second)->has_value());
    EXPECT_EQ(engine->currentSource(), display2);
}

TEST_F(CaptureEngineOverlapTest, AStreamThatHasStartedAfterAStopIsStopped) {
    capture.hold("start");
    const auto result = switchTo(display1);
    stop();
    EXPECT_EQ(calls.take().back(), "stopped");
    deliver(1, "of nobody");
    capture.release("start");
    loop.runUntilIdle();
    expectOvertaken(result);
    EXPECT_TRUE(stream(1).isStarted);
    expectStopped();
}

TEST_F(CaptureEngineOverlapTest, AStopDuringTheQueryStartsNothing) {
    capture.hold("content");
    const auto result = switchTo(display1);
    stop();
    capture.release("content");
    loop.runUntilIdle();
    expectOvertaken(result);
    EXPECT_TRUE(capture.streams.empty());
    expectStopped();
}

TEST_F(CaptureEngineOverlapTest, AStopDuringARetargetEndsIt) {
    for (const std::string step : {"filter", "configuration"}) {
        runOnDisplay1();
        capture.hold(step);
        const auto result = switchTo(display2);
        stop();
        EXPECT_EQ(engine->currentSource(), std::nullopt);
        calls.clear();
        capture.release(step);
        loop.runUntilIdle();
        EXPECT_EQ(calls.take(), Calls{}) << "after the stop, the switch went on";
        expectOvertaken(result);
        expectStopped();
    }
}

TEST_F(CaptureEngineOverlapTest, AStopEndsTheSwitchesThatWaitToo) {
    capture.hold("content");
    const auto first = launchSwitch(display1);
    const auto second = launchSwitch(display2);
    loop.runUntilIdle();
    stop();
    capture.release("content");
    loop.runUntilIdle();
    expectOvertaken(first);
    expectOvertaken(second);
    expectStopped();
}

TEST_F(CaptureEngineOverlapTest, AStartAfterAStopNeedNotWaitForWhatWasOvertaken) {
    capture.hold("start");
    switchTo(display1);
    stop();
    const auto result = switchTo(display2);
    EXPECT_EQ(calls.take().back(), "start 2");
    capture.release("start");
    loop.runUntilIdle();
    EXPECT_TRUE((*result)->has_value());
    EXPECT_EQ(engine->currentSource(), display2);
    EXPECT_TRUE(stream(2).isCapturing());
    EXPECT_EQ(capture.capturingStreams(), 1);
    deliver(1, "of the overtaken stream");
    EXPECT_EQ(layer.shown, std::nullopt);
    deliver(2, "good");
    EXPECT_EQ(layer.shown, "good");
}

TEST_F(CaptureEngineOverlapTest, AStartWhileAStopWaitsIsNotUndoneByIt) {
    runOnDisplay1();
    capture.hold("stop");
    stop();
    switchTo(display2);
    EXPECT_EQ(engine->currentSource(), display2);
    capture.release("stop");
    loop.runUntilIdle();
    EXPECT_EQ(engine->currentSource(), display2);
    EXPECT_TRUE(stream(2).isCapturing());
    EXPECT_EQ(capture.capturingStreams(), 1);
}

TEST_F(CaptureEngineOverlapTest, TwoStopsStopOnce) {
    runOnDisplay1();
    capture.hold("stop");
    launchStop();
    launchStop();
    loop.runUntilIdle();
    capture.release("stop");
    loop.runUntilIdle();
    EXPECT_EQ(calls.take(), (Calls{"flush", "stop 1", "flush", "stopped", "stopped"}));
}

TEST_F(CaptureEngineOverlapTest, AnUnexpectedStopDuringTheQueryLetsTheSwitchMakeAStream) {
    runOnDisplay1();
    capture.hold("content");
    const auto result = switchTo(display2);
    stream(1).stopped(platformError(1));
    loop.runUntilIdle();
    capture.release("content");
    loop.runUntilIdle();
    EXPECT_TRUE((*result)->has_value());
    EXPECT_EQ(engine->currentSource(), display2);
    EXPECT_TRUE(stream(2).isCapturing());
}

TEST_F(CaptureEngineOverlapTest, ASwitchDroppedDuringTheQueryChangesNothing) {
    runOnDisplay1();
    capture.hold("content");
    launchSwitch(display2, other);
    loop.runUntilIdle();
    other.cancelAll();
    EXPECT_EQ(engine->currentSource(), display1);
    deliver(1, "goes on");
    EXPECT_EQ(layer.shown, "goes on");
    capture.release("content");
    switchTo(display2);
    EXPECT_EQ(engine->currentSource(), display2);
}

TEST_F(CaptureEngineOverlapTest, ARetargetThatIsDroppedEndsAStreamThatNobodyKnowsTheSourceOf) {
    for (const std::string step : {"filter", "configuration"}) {
        runOnDisplay1();
        capture.hold(step);
        launchSwitch(display2, other);
        loop.runUntilIdle();
        other.cancelAll();
        expectStopped();
        capture.release(step);
        switchTo(display2);
        EXPECT_EQ(engine->currentSource(), display2);
        EXPECT_EQ(capture.capturingStreams(), 1);
        stop();
    }
}

TEST_F(CaptureEngineOverlapTest, AStartThatIsDroppedLeavesNoStream) {
    capture.hold("start");
    launchSwitch(display1, other);
    loop.runUntilIdle();
    other.cancelAll();
    EXPECT_TRUE(stream(1).isDestroyed);
    capture.release("start");
    loop.runUntilIdle();
    expectStopped();
    EXPECT_TRUE((*switchTo(display1))->has_value());
}

TEST_F(CaptureEngineOverlapTest, AStopThatIsDroppedIsAStopNevertheless) {
    runOnDisplay1();
    capture.hold("stop");
    other.launch(note(engine->stop(), &calls));
    loop.runUntilIdle();
    other.cancelAll();
    EXPECT_TRUE(stream(1).isDestroyed);
    expectStopped();
}

TEST_F(CaptureEngineOverlapTest, ATaskOutlivesTheEngineAndLeavesNoStream) {
    for (const std::string step : {"content", "start", "filter", "configuration", "stop"}) {
        makeEngine();
        const bool isRunning = step != "content" && step != "start";
        if (isRunning)
            switchTo(display1);
        capture.hold(step);
        SharedResult result;
        if (step == "stop")
            launchStop();
        else
            result = launchSwitch(display2);
        loop.runUntilIdle();
        calls.clear();
        engine.reset();
        capture.release(step);
        loop.runUntilIdle();
        if (result)
            expectOvertaken(result);
        EXPECT_EQ(capture.capturingStreams(), 0) << step;
        const auto after = calls.take();
        EXPECT_EQ(std::ranges::count(after, "flush"), 0) << step << ": the renderer was touched";
    }
}

TEST_F(CaptureEngineOverlapTest, DestroyingTheEngineEndsTheStream) {
    runOnDisplay1();
    engine.reset();
    EXPECT_TRUE(stream(1).isDestroyed);
}

} // namespace
} // namespace kestrove
