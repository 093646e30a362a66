#include "Tests/Contract/ContractSuites.h"
#include "Tests/Contract/Suites/SampleCollector.h"

#include <cmath>

namespace kestrove::contract {

namespace {

StreamConfiguration ofGeneration(std::uint64_t generation) {
    StreamConfiguration configuration;
    configuration.minimumFrameInterval = {1, 30};
    configuration.queueDepth = 6;
    configuration.width = 320;
    configuration.height = 240;
    configuration.generation = generation;
    return configuration;
}

class Fixture {
public:
    Fixture(DesktopUnderTest& desktop, ContentFilter filter,
            StreamConfiguration configuration = ofGeneration(1))
        : m_collected(desktop.loop(), desktop.screenCapture(), std::move(filter), configuration) {}

    [[nodiscard]] SampleCollector& samples() const { return *m_collected.collector; }
    [[nodiscard]] CaptureStream& stream() const { return *m_collected.stream; }
    void letGo() { m_collected.stream.reset(); }

private:
    CollectedStream m_collected;
};

} // namespace

TEST_P(CaptureStreamContract, BeginsWithAWholeFrameOnItsQueueWithoutAnyChange) {
    const auto window = openWindow();
    desktop().settle();
    Fixture capture(desktop(), WindowFilter(window), ofGeneration(7));
    const auto started = run(capture.stream().startCapture());
    ASSERT_TRUE(started && started->has_value());
    ASSERT_TRUE(waitUntil([&] { return capture.samples().sampleCount() >= 1; }));
    const auto sample = capture.samples().latest();
    EXPECT_EQ(sample->type(), SampleType::screen);
    EXPECT_TRUE(sample->isValid());
    EXPECT_EQ(sample->generation(), 7U);
    if (sample->attachments()) {
        EXPECT_EQ(sample->attachments()->at(0).status.value_or(0), 0);
    }
    EXPECT_FALSE(capture.samples().wasEverOnMainThread());
}

TEST_P(CaptureStreamContract, SendsAFrameForAChangeAndNoneForNoChange) {
    const auto window = openWindow();
    desktop().settle();
    Fixture capture(desktop(), DisplayFilter(*mainScreen().displayID, {}));
    (void)run(capture.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return capture.samples().sampleCount() >= 1; }));
    desktop().settle();
    const auto before = capture.samples().sampleCount();
    desktop().settle();
    EXPECT_EQ(capture.samples().sampleCount(), before);
    desktop().paintWindow(window, {10, 20, 200});
    EXPECT_TRUE(waitUntil([&] { return capture.samples().sampleCount() > before; }));
}

TEST_P(CaptureStreamContract, AWindowIsCapturedAlsoWhereItIsCovered) {
    const auto window = openWindow({.frame = {100, 100, 200, 200}});
    openWindow({.frame = {50, 50, 500, 500}});
    desktop().settle();
    Fixture capture(desktop(), WindowFilter(window));
    (void)run(capture.stream().startCapture());
    desktop().settle();
    const auto before = capture.samples().sampleCount();
    desktop().paintWindow(window, {10, 20, 200});
    EXPECT_TRUE(waitUntil([&] { return capture.samples().sampleCount() > before; }));
}

TEST_P(CaptureStreamContract, FramesNeverComeCloserThanTheMinimumInterval) {
    const auto window = openWindow();
    desktop().settle();
    auto slow = ofGeneration(1);
    slow.minimumFrameInterval = {1, 4};
    Fixture capture(desktop(), WindowFilter(window), slow);
    const auto begin = desktop().loop().now();
    (void)run(capture.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return capture.samples().sampleCount() >= 1; }));
    int shade = 0;
    const auto painting = desktop().loop().runEvery(
        Seconds(0.02), [&] { desktop().paintWindow(window, {20 + 10 * (++shade % 20), 0, 0}); });
    ASSERT_TRUE(waitUntil([&] { return capture.samples().sampleCount() >= 5; }));
    const auto elapsed = desktop().loop().now() - begin;
    EXPECT_GE(elapsed, Seconds(0.99)) << "five frames have four intervals between them";
}

TEST_P(CaptureStreamContract, AStopIsAnsweredAndNoFrameFollowsIt) {
    const auto window = openWindow();
    desktop().settle();
    Fixture capture(desktop(), WindowFilter(window));
    (void)run(capture.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return capture.samples().sampleCount() >= 1; }));
    const auto stopped = run(capture.stream().stopCapture());
    ASSERT_TRUE(stopped && stopped->has_value());
    desktop().settle();
    const auto before = capture.samples().sampleCount();
    desktop().paintWindow(window, {10, 20, 200});
    desktop().closeWindow(window);
    desktop().settle();
    EXPECT_EQ(capture.samples().sampleCount(), before);
    EXPECT_TRUE(capture.samples().stops().empty());
}

TEST_P(CaptureStreamContract, ReportsOnceThatItsWindowHasGone) {
    const auto window = openWindow();
    const auto other = openWindow();
    desktop().settle();
    Fixture capture(desktop(), WindowFilter(window));
    (void)run(capture.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return capture.samples().sampleCount() >= 1; }));
    desktop().closeWindow(window);
    ASSERT_TRUE(waitUntil([&] { return !capture.samples().stops().empty(); }));
    desktop().settle();
    const auto before = capture.samples().sampleCount();
    const auto updated = run(capture.stream().updateContentFilter(WindowFilter(other)));
    ASSERT_TRUE(updated);
    EXPECT_FALSE(updated->has_value()) << "it has ended";
    const auto stopped = run(capture.stream().stopCapture());
    ASSERT_TRUE(stopped) << "a stop is always answered";
    desktop().settle();
    EXPECT_EQ(capture.samples().sampleCount(), before);
    EXPECT_EQ(capture.samples().stops().size(), 1U);
}

TEST_P(CaptureStreamContract, ReportsThatItsDisplayHasGone) {
    Fixture capture(desktop(), DisplayFilter(*secondScreen().displayID, {}));
    (void)run(capture.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return capture.samples().sampleCount() >= 1; }));
    desktop().unplugSecondDisplay();
    EXPECT_TRUE(waitUntil([&] { return capture.samples().stops().size() == 1; }));
}

TEST_P(CaptureStreamContract, AWindowThatIsOnlyHiddenEndsNothing) {
    const auto window = openWindow();
    desktop().settle();
    Fixture capture(desktop(), WindowFilter(window));
    (void)run(capture.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return capture.samples().sampleCount() >= 1; }));
    desktop().hideWindow(window);
    desktop().settle();
    EXPECT_TRUE(capture.samples().stops().empty());
}

TEST_P(CaptureStreamContract, WhatHasGoneCannotBeStarted) {
    const auto window = openWindow();
    desktop().settle();
    desktop().closeWindow(window);
    Fixture capture(desktop(), WindowFilter(window));
    const auto started = run(capture.stream().startCapture());
    ASSERT_TRUE(started);
    EXPECT_FALSE(started->has_value());
    desktop().settle();
    EXPECT_EQ(capture.samples().sampleCount(), 0);
    EXPECT_TRUE(capture.samples().stops().empty()) << "a stream that never ran reports nothing";
}

TEST_P(CaptureStreamContract, EachUpdateIsFollowedByAWholeFrameOfItsGeneration) {
    const auto first = openWindow();
    const auto second = openWindow({.frame = {150, 150, 300, 300}});
    desktop().settle();
    Fixture capture(desktop(), WindowFilter(first));
    (void)run(capture.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return capture.samples().sampleCount() >= 1; }));
    const auto before = capture.samples().sampleCount();
    const auto filtered = run(capture.stream().updateContentFilter(WindowFilter(second)));
    ASSERT_TRUE(filtered && filtered->has_value());
    EXPECT_TRUE(waitUntil([&] { return capture.samples().sampleCount() > before; }));
    const auto configured = run(capture.stream().updateConfiguration(ofGeneration(2)));
    ASSERT_TRUE(configured && configured->has_value());
    EXPECT_TRUE(waitUntil([&] { return capture.samples().latest()->generation() == 2; }));
    desktop().closeWindow(first);
    desktop().settle();
    EXPECT_TRUE(capture.samples().stops().empty()) << "it is not the first one's any more";
}

TEST_P(CaptureStreamContract, AnUpdateToTheSameIsFollowedByAWholeFrameToo) {
    const auto window = openWindow();
    desktop().settle();
    Fixture capture(desktop(), WindowFilter(window));
    (void)run(capture.stream().startCapture());
    desktop().settle();
    const auto before = capture.samples().sampleCount();
    const auto filtered = run(capture.stream().updateContentFilter(WindowFilter(window)));
    ASSERT_TRUE(filtered && filtered->has_value());
    EXPECT_TRUE(waitUntil([&] { return capture.samples().sampleCount() > before; }));
}

TEST_P(CaptureStreamContract, AFailedUpdateLeavesTheStreamAsItWas) {
    const auto window = openWindow();
    const auto gone = openWindow();
    desktop().settle();
    desktop().closeWindow(gone);
    Fixture capture(desktop(), WindowFilter(window));
    (void)run(capture.stream().startCapture());
    const auto filtered = run(capture.stream().updateContentFilter(WindowFilter(gone)));
    ASSERT_TRUE(filtered);
    EXPECT_FALSE(filtered->has_value());
    desktop().settle();
    const auto before = capture.samples().sampleCount();
    desktop().paintWindow(window, {10, 20, 200});
    EXPECT_TRUE(waitUntil([&] { return capture.samples().sampleCount() > before; }));
    EXPECT_TRUE(capture.samples().stops().empty());
}

TEST_P(CaptureStreamContract, LettingGoOfAStreamStopsItWithoutAReport) {
    const auto window = openWindow();
    desktop().settle();
    Fixture capture(desktop(), WindowFilter(window));
    (void)run(capture.stream().startCapture());
    ASSERT_TRUE(waitUntil([&] { return capture.samples().sampleCount() >= 1; }));
    capture.letGo();
    desktop().settle();
    const auto before = capture.samples().sampleCount();
    desktop().paintWindow(window, {10, 20, 200});
    desktop().closeWindow(window);
    desktop().settle();
    EXPECT_EQ(capture.samples().sampleCount(), before);
    EXPECT_TRUE(capture.samples().stops().empty());
}

} // namespace kestrove::contract
