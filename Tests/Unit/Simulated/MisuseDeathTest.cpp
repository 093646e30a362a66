// Each way in which the simulated desktop ends the process when it is used wrongly.
#include "Tests/Unit/Simulated/Recorder.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

class MisuseDeathTest : public testing::Test {
protected:
    MisuseDeathTest() {
        m_platform.desktop.addDisplay({.displayID = 1, .frame = {0, 0, 1440, 900}});
        m_window = m_platform.desktop.openWindow({.frame = {100, 100, 400, 300}});
    }

    void runOnQueue(Operation operation) {
        const auto queue = m_platform.loop.makeSerialQueue("somewhere");
        queue->post(std::move(operation));
        m_platform.loop.runUntilIdle();
    }
    std::shared_ptr<CaptureStream> makeStream() {
        return m_platform.screenCapture.makeStream(DisplayFilter(1, {}), configurationOf(10, 10),
                                                   {});
    }

    SimulatedPlatform m_platform;
    WindowID m_window = 0;
};

TEST_F(MisuseDeathTest, ASampleAfterTheStop) {
    RecordedStream recorded(m_platform, DisplayFilter(1, {}));
    const auto stream = m_platform.desktop.capture().latestStream();
    EXPECT_DEATH(stream->deliver(), "a sample of a stream that does not run");
    (void)runNow(m_platform, recorded.stream->startCapture());
    stream->deliver();
    (void)runNow(m_platform, recorded.stream->stopCapture());
    EXPECT_DEATH(stream->deliver(), "a sample of a stream that does not run");
    EXPECT_DEATH(stream->endByItself(PlatformError("test", 1)), "ends a stream that does not run");
}

TEST_F(MisuseDeathTest, AStreamStartedTwiceAlsoWhileItStartsAndAfterItsStop) {
    m_platform.desktop.capture().startCapture.next(SimulatedOutcome::succeeds(Seconds(1)));
    RecordedStream recorded(m_platform, DisplayFilter(1, {}));
    const auto start = [&] { (void)runNow(m_platform, recorded.stream->startCapture()); };
    start();
    EXPECT_DEATH(start(), "a stream started twice");
    m_platform.loop.advance(Seconds(1));
    EXPECT_DEATH(start(), "a stream started twice");
    (void)runNow(m_platform, recorded.stream->stopCapture());
    EXPECT_DEATH(start(), "a stream started twice");
}

TEST_F(MisuseDeathTest, OutputsThatAreMissingDoubledOrLate) {
    const auto stream = makeStream();
    const auto queue = m_platform.loop.makeSerialQueue("samples");
    const auto add = [&] {
        (void)stream->addScreenOutput(queue, [](const SampleBufferPointer&) {});
    };
    EXPECT_DEATH((void)stream->addScreenOutput(nullptr, [](const SampleBufferPointer&) {}),
                 "without a queue or a handler");
    EXPECT_DEATH((void)stream->addScreenOutput(queue, nullptr), "without a queue or a handler");
    EXPECT_DEATH((void)runNow(m_platform, stream->startCapture()), "without a screen output");
    add();
    EXPECT_DEATH(add(), "a second screen output");
    (void)runNow(m_platform, stream->startCapture());
    EXPECT_DEATH(add(), "a stream that was started");
}

TEST_F(MisuseDeathTest, AStreamThatWasNeverStarted) {
    const auto stream = makeStream();
    EXPECT_DEATH((void)runNow(m_platform, stream->stopCapture()), "never started is stopped");
    EXPECT_DEATH((void)runNow(m_platform, stream->updateContentFilter(WindowFilter(m_window))),
                 "never started is given another filter");
    EXPECT_DEATH((void)runNow(m_platform, stream->updateConfiguration(configurationOf(1, 1))),
                 "never started is configured anew");
}

TEST_F(MisuseDeathTest, WhatNoLayerCanShow) {
    RecordedStream recorded(m_platform, DisplayFilter(1, {}));
    recorded.keepsSamples = true;
    (void)runNow(m_platform, recorded.stream->startCapture());
    const auto stream = m_platform.desktop.capture().latestStream();
    const auto enqueueOdd = [&](SimulatedSampleTraits traits) {
        stream->deliver(std::move(traits));
        m_platform.loop.runUntilIdle();
        m_platform.displayLayer.enqueue(recorded.samples.back());
    };
    EXPECT_DEATH(m_platform.displayLayer.enqueue(nullptr), "what cannot be shown");
    EXPECT_DEATH(enqueueOdd({.type = SampleType::audio}), "what cannot be shown");
    EXPECT_DEATH(enqueueOdd({.isValid = false}), "what cannot be shown");
    EXPECT_DEATH(enqueueOdd({.attachments = std::vector{SampleAttachments(
                                 static_cast<int>(FrameStatus::idle))}}),
                 "what cannot be shown");
    enqueueOdd({.attachments = std::nullopt});
    EXPECT_EQ(m_platform.displayLayer.enqueueCount(), 1);
}

TEST_F(MisuseDeathTest, AHostDestroyedWhileALayerLiesInItOrThatIsNone) {
    auto& views = m_platform.desktop.views();
    const auto view = views.makeView();
    m_platform.displayLayer.setHost(view);
    EXPECT_DEATH(views.destroyView(view), "with its display layer in it");
    SimulatedDisplayLayer other(m_platform.desktop);
    EXPECT_DEATH(other.setHost(view), "two display layers in one view");
    EXPECT_DEATH(other.setHost(9999), "a view that does not exist");
    m_platform.displayLayer.setHost(0);
    views.destroyView(view);
    EXPECT_DEATH(views.destroyView(view), "a view that does not exist");
    EXPECT_DEATH(views.adoptView(0), "two views of one number");
}

TEST_F(MisuseDeathTest, WhatIsFreedTwiceOrWasNeverThere) {
    m_platform.desktop.closeWindow(m_window);
    EXPECT_DEATH(m_platform.desktop.closeWindow(m_window), "no such window");
    EXPECT_DEATH(m_platform.desktop.paintWindow(m_window, {}), "no such window");
    EXPECT_DEATH(m_platform.desktop.removeDisplay(7), "no such display");
    EXPECT_DEATH(m_platform.desktop.terminateApplication(7), "does not run");
    EXPECT_DEATH(m_platform.desktop.activateApplication(7), "does not run");
    EXPECT_DEATH(m_platform.desktop.openWindow({.processID = 7}), "does not run");
    EXPECT_DEATH(m_platform.desktop.addDisplay({.displayID = 1}), "two displays");
    EXPECT_DEATH(m_platform.desktop.setDisplay({.displayID = 1, .frame = {5, 0, 10, 10}}),
                 "does not start at 0, 0");
    EXPECT_DEATH(m_platform.desktop.capture().startCapture.release(), "no call is held");
}

TEST_F(MisuseDeathTest, HotKeysUnregisteredTwiceOrUnknown) {
    auto& hotKeys = m_platform.hotKeys;
    const auto reference = hotKeys.registerHotKey(1, 0x1100, {1, 1});
    EXPECT_EQ(hotKeys.unregisterHotKey(*reference), 0);
    EXPECT_DEATH((void)hotKeys.unregisterHotKey(*reference), "not registered");
    EXPECT_DEATH((void)hotKeys.unregisterHotKey(4711), "not registered");
    EXPECT_DEATH(m_platform.desktop.keyboard().keyUp({1, 0}), "not down");
    EXPECT_DEATH(m_platform.desktop.keyboard().giveBackByOtherProgram({1, 0}), "not taken");
}

TEST_F(MisuseDeathTest, EveryAdapterOffTheMainThread) {
    const auto dies = [this](Operation operation) {
        EXPECT_DEATH(runOnQueue(std::move(operation)), "called off the main thread");
    };
    dies([this] { (void)m_platform.screens.screens(); });
    dies([this] { (void)m_platform.screens.onChanged([] {}); });
    dies([this] { (void)m_platform.pointer.location(); });
    dies([this] { (void)m_platform.pointer.addLocalMovedMonitor([] {}); });
    dies([this] { (void)m_platform.windowServer.windowList(WindowListOptions::all); });
    dies([this] { (void)m_platform.workspace.frontmostApplication(); });
    dies([this] { (void)m_platform.workspace.onScreensSlept([] {}); });
    dies([this] { (void)m_platform.hotKeys.registerHotKey(1, 2, {}); });
    dies([this] { (void)m_platform.userDefaults.text("key"); });
    dies([this] { m_platform.userDefaults.setText("key", "value"); });
    dies([this] { (void)m_platform.application.isActive(); });
    dies([this] { m_platform.application.quit(); });
    dies([this] { (void)m_platform.screenRecordingAccess.preflight(); });
    dies([this] { m_platform.displayLayer.enqueue(nullptr); });
    dies([this] { m_platform.displayLayer.flush(); });
    dies([this] { (void)makeStream(); });
    dies([stream = makeStream()]() mutable { stream.reset(); });
}

TEST_F(MisuseDeathTest, ALogLineOfTwoLinesAndAnApplicationThatQuitsTwice) {
    EXPECT_DEATH(m_platform.systemLog.write("s", "", LogLevel::error, "a\nb"), "a line break");
    m_platform.application.quit();
    EXPECT_DEATH(m_platform.application.quit(), "quits twice");
}

} // namespace
} // namespace kestrove
