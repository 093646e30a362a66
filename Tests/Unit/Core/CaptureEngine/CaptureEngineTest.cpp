#include "Tests/Unit/Core/CaptureEngine/CaptureEngineFixture.h"

namespace kestrove {
namespace {

class CaptureEngineTest : public CaptureEngineFixture {};

TEST_F(CaptureEngineTest, TheFirstSourceFlushesAsksAndStartsAStream) {
    const auto result = switchTo(display1);
    EXPECT_EQ(calls.take(), (Calls{"flush", "content desktop all", "make 1",
                                   "output dev.kestrove.capture.samples", "start 1"}));
    EXPECT_EQ(**result, CaptureResult(Size{2000, 1600}));
    EXPECT_EQ(engine->currentSource(), display1);
    EXPECT_TRUE(stream(1).isCapturing());
}

TEST_F(CaptureEngineTest, StartIsTheSameAsSwitch) {
    auto result = std::make_shared<std::optional<CaptureResult>>();
    scope.launch(keep(engine->start(display2), result));
    loop.runUntilIdle();
    EXPECT_EQ(**result, CaptureResult(Size{1920, 1080}));
    EXPECT_EQ(engine->currentSource(), display2);
    result->reset();
    scope.launch(keep(engine->start(display1), result));
    loop.runUntilIdle();
    EXPECT_EQ(engine->currentSource(), display1);
    EXPECT_EQ(capture.streams.size(), 1U);
}

TEST_F(CaptureEngineTest, TheConfigurationIsTheOneForSharing) {
    switchTo(display1);
    auto expected = StreamConfiguration();
    expected.minimumFrameInterval = {1, 30};
    expected.pixelFormat = PixelFormat::bgra32;
    expected.showsCursor = true;
    expected.queueDepth = 6;
    expected.colorSpaceName = ColorSpace::sRGB;
    expected.width = 2000;
    expected.height = 1600;
    expected.generation = stream(1).configuration.generation;
    EXPECT_EQ(stream(1).configuration, expected);
    EXPECT_NE(expected.generation, 0U);
}

TEST_F(CaptureEngineTest, ARunningStreamIsRetargetedFilterFirst) {
    runOnDisplay1();
    const auto result = switchTo(display2);
    EXPECT_EQ(calls.take(), (Calls{"flush", "content desktop all", "filter 1", "configuration 1"}));
    EXPECT_EQ(**result, CaptureResult(Size{1920, 1080}));
    EXPECT_EQ(engine->currentSource(), display2);
    EXPECT_EQ(stream(1).filter, ContentFilter(DisplayFilter(2, {})));
    EXPECT_EQ(stream(1).configuration.width, 1920);
}

TEST_F(CaptureEngineTest, AWindowIsLookedForOnScreenOnlyAndEnlarged) {
    const auto result = switchTo(smallWindow);
    EXPECT_EQ(calls.take()[1], "content desktop on-screen");
    EXPECT_EQ(**result, CaptureResult(Size{540, 270}));
    EXPECT_EQ(stream(1).filter, ContentFilter(WindowFilter(10)));
    EXPECT_EQ(stream(1).configuration.width, 540);
    EXPECT_EQ(stream(1).configuration.height, 270);
}

TEST_F(CaptureEngineTest, ASmallDisplayIsNotEnlarged) {
    capture.content.displays = {{1, 100, 50}};
    EXPECT_EQ(**switchTo(display1), CaptureResult(Size{200, 100}));
}

TEST_F(CaptureEngineTest, ExcludedWindowsAreLeftOutOfADisplayEvenOffScreen) {
    engine->setExcludedWindowIDs({12, 10});
    switchTo(display1);
    EXPECT_EQ(stream(1).filter, ContentFilter(DisplayFilter(1, {10, 12})));
    engine->setExcludedWindowIDs({11});
    EXPECT_EQ(stream(1).filter, ContentFilter(DisplayFilter(1, {10, 12})));
    switchTo(display2);
    EXPECT_EQ(stream(1).filter, ContentFilter(DisplayFilter(2, {11})));
}

TEST_F(CaptureEngineTest, TheFrameRateIsClampedAndWaitsForTheNextReconfiguration) {
    engine->setFPS(0);
    switchTo(display1);
    EXPECT_EQ(stream(1).configuration.minimumFrameInterval, (MediaTime{1, 1}));
    engine->setFPS(61);
    loop.runUntilIdle();
    EXPECT_EQ(stream(1).configuration.minimumFrameInterval, (MediaTime{1, 1}));
    switchTo(display2);
    EXPECT_EQ(stream(1).configuration.minimumFrameInterval, (MediaTime{1, 60}));
    engine->setFPS(-5);
    switchTo(display1);
    EXPECT_EQ(stream(1).configuration.minimumFrameInterval, (MediaTime{1, 1}));
    engine->setFPS(24);
    switchTo(display1);
    EXPECT_EQ(stream(1).configuration.minimumFrameInterval, (MediaTime{1, 24}));
}

TEST_F(CaptureEngineTest, FrameRateAndExcludedWindowsSurviveAStop) {
    engine->setFPS(12);
    engine->setExcludedWindowIDs({11});
    switchTo(display1);
    stop();
    switchTo(display1);
    EXPECT_EQ(stream(2).configuration.minimumFrameInterval, (MediaTime{1, 12}));
    EXPECT_EQ(stream(2).filter, ContentFilter(DisplayFilter(1, {11})));
}

TEST_F(CaptureEngineTest, StopForgetsTheStreamAndEmptiesTheLayer) {
    runOnDisplay1();
    stop();
    EXPECT_EQ(calls.take(), (Calls{"flush", "stop 1", "stopped"}));
    EXPECT_EQ(engine->currentSource(), std::nullopt);
    EXPECT_TRUE(stream(1).isStopped);
    EXPECT_TRUE(stream(1).isDestroyed);
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(CaptureEngineTest, StopWithoutAStreamOnlyEmptiesTheLayer) {
    stop();
    EXPECT_EQ(calls.take(), (Calls{"flush", "stopped"}));
}

TEST_F(CaptureEngineTest, AFailedStopIsLoggedAndCountsAsStopped) {
    runOnDisplay1();
    capture.fail("stop", platformError(-3808));
    stop();
    EXPECT_EQ(engine->currentSource(), std::nullopt);
    EXPECT_TRUE(stream(1).isDestroyed);
    EXPECT_EQ(log.lines, (std::vector<RecordingLog::Line>{
                             {"dev.kestrove", "capture-stream", LogLevel::error,
                              "failed to stop SCStream domain=Fake code=-3808"}}));
    EXPECT_EQ(calls.take().back(), "stopped");
}

} // namespace
} // namespace kestrove
