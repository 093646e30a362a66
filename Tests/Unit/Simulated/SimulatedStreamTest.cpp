#include "Tests/Unit/Simulated/Recorder.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

using Result = std::expected<void, PlatformError>;

class SimulatedStreamTest : public testing::Test {
protected:
    SimulatedStreamTest() {
        m_platform.desktop.addDisplay({.displayID = 1, .frame = {0, 0, 1440, 900}});
        m_platform.desktop.addDisplay({.displayID = 2, .frame = {1440, 0, 1440, 900}});
        m_window = m_platform.desktop.openWindow({.frame = {100, 100, 400, 300}});
    }

    std::size_t runningStreams() { return m_platform.desktop.capture().runningStreamCount(); }

    SimulatedPlatform m_platform;
    WindowID m_window = 0;
};

TEST_F(SimulatedStreamTest, StartsWithAWholeFrameAndSaysWhereItComesFrom) {
    m_platform.loop.advance(Seconds(5));
    RecordedStream recorded(m_platform, DisplayFilter(1, {77}));
    const auto started = runNow(m_platform, recorded.stream->startCapture());
    ASSERT_TRUE(started && started->has_value());
    ASSERT_EQ(recorded.frames.size(), 1U);
    const auto& frame = *recorded.frames.front();
    EXPECT_EQ(frame.stream, 1);
    EXPECT_EQ(frame.number, 1U);
    EXPECT_EQ(frame.capturedAt, Seconds(5));
    EXPECT_EQ(frame.filter, ContentFilter(DisplayFilter(1, {77})));
    EXPECT_EQ(frame.configuration, configurationOf(144, 90));
    EXPECT_TRUE(frame.picture.shows(m_window));
    EXPECT_EQ(frame.colorAt({12, 12}), (SimulatedColor{200, 200, 200}));
}

TEST_F(SimulatedStreamTest, SendsNothingWhileNothingChanges) {
    RecordedStream recorded(m_platform, DisplayFilter(1, {}));
    (void)runNow(m_platform, recorded.stream->startCapture());
    m_platform.loop.advance(Seconds(3600));
    EXPECT_EQ(recorded.frames.size(), 1U);
    EXPECT_EQ(m_platform.loop.timerCount(), 0U);
}

TEST_F(SimulatedStreamTest, PacesChangesAndShowsTheFirstAfterAPauseAtOnce) {
    RecordedStream recorded(m_platform, DisplayFilter(1, {}));
    (void)runNow(m_platform, recorded.stream->startCapture());
    m_platform.loop.advance(Seconds(1));
    m_platform.desktop.paintWindow(m_window, {1, 0, 0});
    m_platform.loop.runUntilIdle();
    ASSERT_EQ(recorded.frames.size(), 2U);
    m_platform.desktop.paintWindow(m_window, {2, 0, 0});
    m_platform.loop.advance(Seconds(0.05));
    m_platform.desktop.paintWindow(m_window, {3, 0, 0});
    m_platform.loop.advance(Seconds(0.049));
    EXPECT_EQ(recorded.frames.size(), 2U);
    m_platform.loop.advance(Seconds(0.001));
    ASSERT_EQ(recorded.frames.size(), 3U);
    EXPECT_EQ(recorded.frames.back()->colorAt({12, 12}), (SimulatedColor{3, 0, 0}));
}

TEST_F(SimulatedStreamTest, MergesWhatWouldBeOneFrameTooManyOnItsWay) {
    RecordedStream recorded(m_platform, DisplayFilter(1, {}));
    recorded.keepsSamples = true;
    (void)runNow(m_platform, recorded.stream->startCapture());
    for (std::uint8_t red = 1; red <= 10; ++red) {
        m_platform.desktop.paintWindow(m_window, {red, 0, 0});
        m_platform.loop.advance(Seconds(1));
    }
    EXPECT_EQ(recorded.frames.size(), 3U);
    recorded.samples.erase(recorded.samples.begin());
    m_platform.loop.advance(Seconds(1));
    ASSERT_EQ(recorded.frames.size(), 4U);
    EXPECT_EQ(recorded.frames.back()->colorAt({12, 12}), (SimulatedColor{10, 0, 0}));
}

TEST_F(SimulatedStreamTest, SendsNothingMoreOnceItHasEndedThoughRoomIsMade) {
    RecordedStream recorded(m_platform, WindowFilter(m_window));
    recorded.keepsSamples = true;
    (void)runNow(m_platform, recorded.stream->startCapture());
    for (std::uint8_t red = 1; red <= 10; ++red) {
        m_platform.desktop.paintWindow(m_window, {red, 0, 0});
        m_platform.loop.advance(Seconds(1));
    }
    m_platform.desktop.closeWindow(m_window);
    recorded.samples.clear();
    m_platform.loop.advance(Seconds(1));
    EXPECT_EQ(recorded.frames.size(), 3U);
}

TEST_F(SimulatedStreamTest, LeavesOutExcludedAndCoveredWindows) {
    const auto covered = m_platform.desktop.openWindow({.frame = {900, 100, 100, 100}});
    const auto cover = m_platform.desktop.openWindow({.frame = {890, 90, 200, 200}});
    RecordedStream recorded(m_platform, DisplayFilter(1, {m_window}));
    (void)runNow(m_platform, recorded.stream->startCapture());
    EXPECT_FALSE(recorded.frames.back()->picture.shows(m_window));
    EXPECT_FALSE(recorded.frames.back()->picture.shows(covered));
    EXPECT_TRUE(recorded.frames.back()->picture.shows(cover));
    m_platform.desktop.paintWindow(m_window, {1, 0, 0});
    m_platform.desktop.paintWindow(covered, {1, 0, 0});
    m_platform.loop.advance(Seconds(1));
    EXPECT_EQ(recorded.frames.size(), 1U);
    m_platform.desktop.closeWindow(cover);
    m_platform.loop.advance(Seconds(1));
    EXPECT_TRUE(recorded.frames.back()->picture.shows(covered));
}

TEST_F(SimulatedStreamTest, AWindowStreamIsLiveWhereverTheWindowLies) {
    RecordedStream recorded(m_platform, WindowFilter(m_window));
    (void)runNow(m_platform, recorded.stream->startCapture());
    m_platform.desktop.openWindow({.frame = {0, 0, 1440, 900}});
    m_platform.desktop.moveWindow(m_window, {-5000, 0, 400, 300});
    m_platform.loop.advance(Seconds(1));
    EXPECT_EQ(recorded.frames.size(), 1U);
    m_platform.desktop.paintWindow(m_window, {0, 0, 9});
    m_platform.loop.advance(Seconds(1));
    ASSERT_EQ(recorded.frames.size(), 2U);
    EXPECT_EQ(recorded.frames.back()->colorAt({72, 45}), (SimulatedColor{0, 0, 9}));
}

TEST_F(SimulatedStreamTest, ReportsItsStopWhenItsWindowGoes) {
    RecordedStream recorded(m_platform, WindowFilter(m_window));
    (void)runNow(m_platform, recorded.stream->startCapture());
    m_platform.desktop.closeWindow(m_window);
    EXPECT_EQ(runningStreams(), 0U);
    EXPECT_TRUE(recorded.stops.empty());
    m_platform.loop.runUntilIdle();
    EXPECT_EQ(recorded.stops, std::vector{simulatedError(SimulatedError::windowGone)});
    const auto stopped = runNow(m_platform, recorded.stream->stopCapture());
    EXPECT_EQ(stopped->error(), simulatedError(SimulatedError::notRunning));
}

TEST_F(SimulatedStreamTest, ReportsItsStopWhenItsDisplayGoesOrThePermissionIsWithdrawn) {
    RecordedStream ofDisplay(m_platform, DisplayFilter(2, {}));
    RecordedStream ofOther(m_platform, DisplayFilter(1, {}));
    (void)runNow(m_platform, ofDisplay.stream->startCapture());
    (void)runNow(m_platform, ofOther.stream->startCapture());
    m_platform.desktop.removeDisplay(2);
    m_platform.loop.runUntilIdle();
    EXPECT_EQ(ofDisplay.stops, std::vector{simulatedError(SimulatedError::displayGone)});
    EXPECT_TRUE(ofOther.stops.empty());
    m_platform.desktop.setRecordingAllowed(false);
    m_platform.loop.runUntilIdle();
    EXPECT_EQ(ofOther.stops, std::vector{simulatedError(SimulatedError::notAllowed)});
    EXPECT_EQ(ofDisplay.stops.size(), 1U);
}

TEST_F(SimulatedStreamTest, ReportsNoStopThatItsUserAskedFor) {
    RecordedStream recorded(m_platform, WindowFilter(m_window));
    (void)runNow(m_platform, recorded.stream->startCapture());
    (void)runNow(m_platform, recorded.stream->stopCapture());
    m_platform.desktop.closeWindow(m_window);
    m_platform.loop.runUntilIdle();
    EXPECT_TRUE(recorded.stops.empty());
}

TEST_F(SimulatedStreamTest, HandsNoSampleToTheQueueOnceAStopWasAskedFor) {
    m_platform.desktop.capture().stopCapture.always(SimulatedOutcome::succeeds(Seconds(10)));
    RecordedStream recorded(m_platform, DisplayFilter(1, {}));
    (void)runNow(m_platform, recorded.stream->startCapture());
    m_platform.loop.advance(Seconds(1));
    (void)runNow(m_platform, recorded.stream->stopCapture());
    m_platform.desktop.paintWindow(m_window, {1, 0, 0});
    m_platform.loop.advance(Seconds(60));
    EXPECT_EQ(recorded.frames.size(), 1U);
}

TEST_F(SimulatedStreamTest, ADroppedStartStillTakesEffect) {
    m_platform.desktop.capture().startCapture.next(SimulatedOutcome::succeeds(Seconds(2)));
    RecordedStream recorded(m_platform, DisplayFilter(1, {}));
    EXPECT_FALSE(runNow(m_platform, recorded.stream->startCapture()));
    EXPECT_EQ(runningStreams(), 0U);
    m_platform.loop.advance(Seconds(2));
    EXPECT_EQ(runningStreams(), 1U);
    EXPECT_EQ(recorded.frames.size(), 1U);
}

TEST_F(SimulatedStreamTest, LettingGoOfTheStreamStopsItAlsoWhileItStarts) {
    m_platform.desktop.capture().startCapture.next(SimulatedOutcome::held());
    auto starting = std::make_unique<RecordedStream>(m_platform, DisplayFilter(1, {}));
    (void)runNow(m_platform, starting->stream->startCapture());
    starting->stream.reset();
    m_platform.desktop.capture().startCapture.release();
    auto running = std::make_unique<RecordedStream>(m_platform, DisplayFilter(1, {}));
    (void)runNow(m_platform, running->stream->startCapture());
    EXPECT_EQ(runningStreams(), 1U);
    running->stream.reset();
    m_platform.desktop.paintWindow(m_window, {1, 0, 0});
    m_platform.loop.advance(Seconds(1));
    EXPECT_EQ(runningStreams(), 0U);
    EXPECT_TRUE(starting->frames.empty());
    EXPECT_EQ(running->frames.size(), 1U);
}

TEST_F(SimulatedStreamTest, EachUpdateIsFollowedByAWholeFrame) {
    RecordedStream recorded(m_platform, DisplayFilter(1, {}));
    (void)runNow(m_platform, recorded.stream->startCapture());
    m_platform.loop.advance(Seconds(1));
    const auto filtered =
        runNow(m_platform, recorded.stream->updateContentFilter(DisplayFilter(2, {})));
    EXPECT_TRUE(filtered->has_value());
    EXPECT_EQ(recorded.frames.size(), 2U);
    EXPECT_FALSE(recorded.frames.back()->picture.shows(m_window));
    m_platform.loop.advance(Seconds(1));
    const auto configured =
        runNow(m_platform, recorded.stream->updateConfiguration(configurationOf(72, 45)));
    EXPECT_TRUE(configured->has_value());
    ASSERT_EQ(recorded.frames.size(), 3U);
    EXPECT_EQ(recorded.frames.back()->configuration, configurationOf(72, 45));
}

TEST_F(SimulatedStreamTest, AFailedUpdateLeavesTheStreamAsItWas) {
    const PlatformError refused("test", 7);
    m_platform.desktop.capture().updateContentFilter.next(SimulatedOutcome::fails(refused));
    RecordedStream recorded(m_platform, WindowFilter(m_window));
    (void)runNow(m_platform, recorded.stream->startCapture());
    const auto failed =
        runNow(m_platform, recorded.stream->updateContentFilter(DisplayFilter(1, {})));
    EXPECT_EQ(failed->error(), refused);
    const auto impossible =
        runNow(m_platform, recorded.stream->updateContentFilter(DisplayFilter(9, {})));
    EXPECT_EQ(impossible->error(), simulatedError(SimulatedError::displayGone));
    EXPECT_EQ(m_platform.desktop.capture().latestStream()->filter(),
              ContentFilter(WindowFilter(m_window)));
    EXPECT_EQ(recorded.frames.size(), 1U);
    EXPECT_EQ(runningStreams(), 1U);
}

TEST_F(SimulatedStreamTest, RecordsEveryCallInOrder) {
    RecordedStream recorded(m_platform, DisplayFilter(1, {}));
    (void)runNow(m_platform, recorded.stream->startCapture());
    (void)runNow(m_platform, recorded.stream->stopCapture());
    recorded.stream.reset();
    EXPECT_EQ(m_platform.desktop.capture().calls(),
              (std::vector{CaptureCall::makeStream, CaptureCall::addScreenOutput,
                           CaptureCall::startCapture, CaptureCall::stopCapture,
                           CaptureCall::destroyStream}));
    EXPECT_EQ(m_platform.desktop.capture().startCapture.callCount(), 1);
}

} // namespace
} // namespace kestrove
