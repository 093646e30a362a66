#include "Core/CaptureEngine/SampleFilter.h"
#include "Tests/Unit/Core/CaptureEngine/CaptureEngineFixture.h"

namespace kestrove {
namespace {

class CaptureEngineFramesTest : public CaptureEngineFixture {
protected:
    std::shared_ptr<ScriptedSample> sample(const std::string& name) {
        return std::make_shared<ScriptedSample>(name, stream(1).configuration.generation);
    }
    void expectShown(const std::shared_ptr<ScriptedSample>& sent, bool isShown) {
        layer.shown.reset();
        stream(1).deliver(sent);
        loop.runUntilIdle();
        EXPECT_EQ(layer.shown.has_value(), isShown);
    }
};

TEST_F(CaptureEngineFramesTest, OnlyCompleteFramesOrThoseWithoutAStatusAreShown) {
    runOnDisplay1();
    const auto frame = sample("frame");
    expectShown(frame, true);
    for (const auto status : {FrameStatus::idle, FrameStatus::blank, FrameStatus::suspended,
                              FrameStatus::started, FrameStatus::stopped}) {
        frame->attached = std::vector{SampleAttachments(static_cast<int>(status))};
        expectShown(frame, false);
    }
    frame->attached = std::vector{SampleAttachments(17)};
    expectShown(frame, false);
    frame->attached = std::vector{SampleAttachments()};
    expectShown(frame, true);
    frame->attached = std::vector<SampleAttachments>();
    expectShown(frame, true);
    frame->attached = std::nullopt;
    expectShown(frame, true);
}

TEST_F(CaptureEngineFramesTest, OnlyTheFirstAttachmentCounts) {
    ScriptedSample frame("frame", 1);
    frame.attached = std::vector{SampleAttachments(0), SampleAttachments(1)};
    EXPECT_TRUE(isShowable(frame));
    frame.attached = std::vector{SampleAttachments(1), SampleAttachments(0)};
    EXPECT_FALSE(isShowable(frame));
}

TEST_F(CaptureEngineFramesTest, SoundAndInvalidBuffersAreIgnored) {
    runOnDisplay1();
    const auto sound = sample("sound");
    sound->sampleType = SampleType::audio;
    expectShown(sound, false);
    const auto invalid = sample("invalid");
    invalid->valid = false;
    expectShown(invalid, false);
}

TEST_F(CaptureEngineFramesTest, FramesCrossToTheMainThread) {
    runOnDisplay1();
    bool wasShownOnTheQueue = false;
    stream(1).deliver("frame");
    stream(1).queue->post([&] { wasShownOnTheQueue = layer.shown.has_value(); });
    loop.runUntilIdle();
    EXPECT_FALSE(wasShownOnTheQueue);
    EXPECT_EQ(layer.shown, "frame");
}

TEST_F(CaptureEngineFramesTest, AFailedLayerIsFlushedBeforeTheFrame) {
    runOnDisplay1();
    layer.currentStatus = DisplayLayerStatus::failed;
    deliver(1, "frame");
    EXPECT_EQ(calls.take(), (Calls{"flush", "show frame"}));
}

TEST_F(CaptureEngineFramesTest, AFrameThatComesBeforeTheStartIsAnsweredIsShown) {
    capture.hold("start");
    switchTo(display1);
    deliver(1, "first");
    EXPECT_EQ(layer.shown, "first");
    capture.release("start");
    loop.runUntilIdle();
    EXPECT_EQ(layer.shown, "first");
}

TEST_F(CaptureEngineFramesTest, NoFrameOfTheOldSourceIsShownOnceASwitchHasBegun) {
    for (const std::string step : {"content", "filter", "configuration"}) {
        runOnDisplay1();
        deliver(1, "old");
        capture.hold(step);
        // On its way to the main thread when the layer is flushed.
        stream(1).deliver("old, on its way");
        launchSwitch(display2);
        loop.runUntilIdle();
        deliver(1, "old, before the platform changes over");
        EXPECT_EQ(layer.shown, std::nullopt) << step;

        const auto oldGeneration = stream(1).configuration.generation;
        capture.release(step);
        loop.runUntilIdle();
        EXPECT_EQ(engine->currentSource(), display2);
        stream(1).deliver(std::make_shared<ScriptedSample>("old, very late", oldGeneration));
        loop.runUntilIdle();
        EXPECT_EQ(layer.shown, std::nullopt) << step;
        deliver(1, "new");
        EXPECT_EQ(layer.shown, "new") << step;
    }
}

TEST_F(CaptureEngineFramesTest, TheOnlyFrameOfAStillDesktopIsShownThoughTheAnswerComesLater) {
    runOnDisplay1();
    capture.hold("configuration");
    const auto oldGeneration = stream(1).configuration.generation;
    switchTo(display2);
    stream(1).deliver(std::make_shared<ScriptedSample>("new", oldGeneration + 1));
    loop.runUntilIdle();
    capture.release("configuration");
    loop.runUntilIdle();
    EXPECT_EQ(layer.shown, "new");
}

TEST_F(CaptureEngineFramesTest, NoFrameIsShownOnceAStopHasBegun) {
    runOnDisplay1();
    capture.hold("stop");
    stream(1).deliver("on its way");
    stop();
    deliver(1, "while stopping");
    capture.release("stop");
    loop.runUntilIdle();
    deliver(1, "after the stop");
    EXPECT_EQ(layer.shown, std::nullopt);
}

TEST_F(CaptureEngineFramesTest, NoFrameOfAnEarlierStreamIsShownByTheNext) {
    runOnDisplay1();
    stop();
    switchTo(display1);
    deliver(1, "late");
    EXPECT_EQ(layer.shown, std::nullopt);
    deliver(2, "good");
    EXPECT_EQ(layer.shown, "good");
}

TEST_F(CaptureEngineFramesTest, NoFrameIsShownAfterAnUnexpectedStop) {
    runOnDisplay1();
    stream(1).stopped(platformError(1));
    stream(1).deliver("late");
    loop.runUntilIdle();
    EXPECT_EQ(layer.shown, std::nullopt);
}

TEST_F(CaptureEngineFramesTest, FramesOutliveTheEngineInVain) {
    runOnDisplay1();
    calls.clear();
    stream(1).deliver("late");
    engine.reset();
    stream(1).stopped(platformError(1));
    loop.runUntilIdle();
    deliver(1, "later");
    EXPECT_EQ(calls.take(), Calls{});
}

} // namespace
} // namespace kestrove
