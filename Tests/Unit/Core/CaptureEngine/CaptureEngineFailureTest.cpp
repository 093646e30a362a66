#include "Tests/Unit/Core/CaptureEngine/CaptureEngineFixture.h"

namespace kestrove {
namespace {

class CaptureEngineFailureTest : public CaptureEngineFixture {
protected:
    static void expectEngineError(const SharedResult& result, EngineError error) {
        ASSERT_TRUE(*result);
        ASSERT_FALSE(**result);
        EXPECT_EQ((*result)->error(), CaptureError(error));
    }
    static void expectPlatformError(const SharedResult& result, long code) {
        ASSERT_TRUE(*result);
        ASSERT_FALSE(**result);
        EXPECT_EQ((*result)->error(), CaptureError(platformError(code)));
    }
};

TEST_F(CaptureEngineFailureTest, AnUnpluggedDisplayIsNotFoundAndTheSourceStays) {
    runOnDisplay1();
    capture.content.displays = {{1, 1000, 800}};
    expectEngineError(switchTo(display2), EngineError::displayNotFound);
    EXPECT_EQ(calls.take(), (Calls{"flush", "content desktop all"}));
    EXPECT_EQ(engine->currentSource(), display1);
    EXPECT_TRUE(stream(1).isCapturing());
    deliver(1, "goes on");
    EXPECT_EQ(layer.shown, "goes on");
}

TEST_F(CaptureEngineFailureTest, AClosedWindowIsNotFound) {
    expectEngineError(switchTo(CaptureSource::window(99)), EngineError::windowNotFound);
    EXPECT_EQ(engine->currentSource(), std::nullopt);
    EXPECT_TRUE(capture.streams.empty());
}

TEST_F(CaptureEngineFailureTest, AWindowOfTheNumberOfADisplayIsNotThatDisplay) {
    expectEngineError(switchTo(CaptureSource::window(1)), EngineError::windowNotFound);
    expectEngineError(switchTo(CaptureSource::display(10)), EngineError::displayNotFound);
}

TEST_F(CaptureEngineFailureTest, ARefusedContentQueryIsPassedOn) {
    capture.fail("content", platformError(1));
    expectPlatformError(switchTo(display1), 1);
    EXPECT_TRUE(capture.streams.empty());
}

TEST_F(CaptureEngineFailureTest, ARefusedOutputDropsTheNewStream) {
    capture.fail("output", platformError(2));
    expectPlatformError(switchTo(display1), 2);
    EXPECT_FALSE(stream(1).isStarted);
    EXPECT_TRUE(stream(1).isDestroyed);
    EXPECT_EQ(engine->currentSource(), std::nullopt);
}

TEST_F(CaptureEngineFailureTest, AFailedStartDropsTheNewStreamAndTheNextSwitchMakesAnother) {
    capture.fail("start", platformError(3));
    expectPlatformError(switchTo(display1), 3);
    EXPECT_TRUE(stream(1).isDestroyed);
    EXPECT_EQ(engine->currentSource(), std::nullopt);
    deliver(1, "late");
    EXPECT_EQ(layer.shown, std::nullopt);

    capture.succeed("start");
    EXPECT_TRUE((**switchTo(display2)).has_value());
    EXPECT_TRUE(stream(2).isCapturing());
    EXPECT_EQ(engine->currentSource(), display2);
}

TEST_F(CaptureEngineFailureTest, ARefusedFilterLeavesTheStreamAsItWas) {
    runOnDisplay1();
    capture.fail("filter", platformError(4));
    expectPlatformError(switchTo(display2), 4);
    EXPECT_EQ(calls.take(), (Calls{"flush", "content desktop all", "filter 1"}));
    EXPECT_EQ(engine->currentSource(), display1);
    EXPECT_TRUE(stream(1).isCapturing());
    deliver(1, "goes on");
    EXPECT_EQ(layer.shown, "goes on");
}

TEST_F(CaptureEngineFailureTest, ARefusedConfigurationKeepsTheSourceButShowsNothingOfTheOther) {
    runOnDisplay1();
    capture.fail("configuration", platformError(5));
    expectPlatformError(switchTo(display2), 5);
    EXPECT_EQ(engine->currentSource(), display1);
    EXPECT_TRUE(stream(1).isCapturing());
    deliver(1, "of display 2 while display 1 is current");
    EXPECT_EQ(layer.shown, std::nullopt);

    // Nor after a further switch that fails before it touches the stream.
    expectEngineError(switchTo(CaptureSource::display(77)), EngineError::displayNotFound);
    deliver(1, "of display 2 still");
    EXPECT_EQ(layer.shown, std::nullopt);

    capture.succeed("configuration");
    switchTo(display2);
    deliver(1, "good");
    EXPECT_EQ(layer.shown, "good");
    EXPECT_EQ(capture.streams.size(), 1U);
}

TEST_F(CaptureEngineFailureTest, AStreamThatStopsByItselfIsForgottenAndReported) {
    runOnDisplay1();
    deliver(1, "last");
    calls.clear();
    stream(1).stopped(platformError(-3821));
    EXPECT_EQ(engine->currentSource(), display1) << "forgotten inside the report";
    loop.runUntilIdle();
    EXPECT_EQ(calls.take(), (Calls{"flush", "unexpected stop"}));
    EXPECT_EQ(engine->currentSource(), std::nullopt);
    EXPECT_EQ(layer.shown, std::nullopt);
    EXPECT_TRUE(stream(1).isDestroyed);
    EXPECT_EQ(log.lines, (std::vector<RecordingLog::Line>{
                             {"dev.kestrove", "capture-stream", LogLevel::error,
                              "SCStream stopped unexpectedly domain=Fake code=-3821"}}));
}

TEST_F(CaptureEngineFailureTest, AStopIsReportedFromAnyThread) {
    runOnDisplay1();
    stream(1).queue->post([this] { stream(1).stopped(platformError(1)); });
    loop.runUntilIdle();
    EXPECT_EQ(calls.take(), (Calls{"flush", "unexpected stop"}));
}

TEST_F(CaptureEngineFailureTest, AReportOfAReplacedStreamChangesNothing) {
    switchTo(display1);
    stop();
    switchTo(display2);
    deliver(2, "live");
    calls.clear();
    stream(1).stopped(platformError(1));
    loop.runUntilIdle();
    EXPECT_EQ(calls.take(), Calls{});
    EXPECT_EQ(engine->currentSource(), display2);
    EXPECT_EQ(layer.shown, "live");
}

TEST_F(CaptureEngineFailureTest, AReportDuringAStopIsNotUnexpected) {
    runOnDisplay1();
    capture.hold("stop");
    stop();
    stream(1).stopped(platformError(1));
    capture.release("stop");
    loop.runUntilIdle();
    EXPECT_EQ(calls.take(), (Calls{"flush", "stop 1", "stopped"}));
}

TEST_F(CaptureEngineFailureTest, AStreamThatStopsBeforeItsStartIsAnsweredNeverRuns) {
    capture.hold("start");
    const auto result = switchTo(display1);
    stream(1).stopped(platformError(9));
    loop.runUntilIdle();
    capture.release("start");
    loop.runUntilIdle();
    expectPlatformError(result, 9);
    EXPECT_EQ(engine->currentSource(), std::nullopt);
    EXPECT_TRUE(stream(1).isDestroyed);
}

TEST_F(CaptureEngineFailureTest, AStreamThatStopsWhileRetargetedFailsTheSwitch) {
    for (const std::string step : {"filter", "configuration"}) {
        runOnDisplay1();
        const auto number = capture.streams.size();
        capture.hold(step);
        const auto result = switchTo(display2);
        stream(number).stopped(platformError(9));
        loop.runUntilIdle();
        EXPECT_EQ(calls.take().back(), "unexpected stop");
        capture.release(step);
        loop.runUntilIdle();
        expectPlatformError(result, 9);
        EXPECT_EQ(engine->currentSource(), std::nullopt);
        EXPECT_TRUE(stream(number).isDestroyed);
        EXPECT_EQ(calls.take(), Calls{}) << step;
    }
}

TEST_F(CaptureEngineFailureTest, TheCallbackMayDestroyTheEngine) {
    runOnDisplay1();
    engine->setOnUnexpectedStop([this] { engine.reset(); });
    stream(1).stopped(platformError(1));
    loop.runUntilIdle();
    EXPECT_EQ(engine, nullptr);
}

} // namespace
} // namespace kestrove
