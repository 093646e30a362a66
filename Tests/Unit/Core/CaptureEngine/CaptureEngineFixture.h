#pragma once

#include "Async/TaskScope.h"
#include "Core/CaptureEngine/CaptureEngine.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Tests/Support/ScriptedDesktop/RecordingLog.h"
#include "Tests/Support/ScriptedDesktop/ScriptedCaptureService.h"
#include "Tests/Support/ScriptedDesktop/ScriptedDisplayLayer.h"
#include "Tests/Support/ScriptedDesktop/ScriptedScreens.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kestrove {

using Calls = std::vector<std::string>;
using SharedResult = std::shared_ptr<std::optional<CaptureResult>>;

/// An engine over scripted services, with displays 1 (at twice the pixels) and 2, and windows 10
/// (small), 11 and 12 (off screen).
class CaptureEngineFixture : public testing::Test {
protected:
    CaptureEngineFixture() {
        screens.add({0, 0, 1000, 800}, 1);
        screens.add({1000, 0, 1920, 1080}, 2);
        screens.list[0].backingScaleFactor = 2;
        capture.content.displays = {{1, 1000, 800}, {2, 1920, 1080}};
        capture.content.windows = {window(10, {10, 10, 100, 50}), window(11, {1200, 0, 640, 480}),
                                   window(12, {-3000, 0, 640, 480})};
        makeEngine();
    }

    static CapturableWindow window(WindowID identifier, Rect frame) {
        CapturableWindow result;
        result.windowID = identifier;
        result.frame = frame;
        return result;
    }

    void makeEngine() {
        engine = std::make_unique<CaptureEngine>(
            renderer, CaptureEnginePlatform{loop, capture, screens, log, "dev.kestrove"});
        engine->setOnUnexpectedStop([this] { calls.add("unexpected stop"); });
    }

    static Task<void> keep(Task<CaptureResult> task, SharedResult result) {
        *result = co_await std::move(task);
    }
    static Task<void> note(Task<void> task, CallLog* log) {
        co_await std::move(task);
        log->add("stopped");
    }

    /// Launches a switch; the result is there when it has ended.
    SharedResult launchSwitch(CaptureSource to, TaskScope& in) {
        auto result = std::make_shared<std::optional<CaptureResult>>();
        in.launch(keep(engine->switchSource(to), result));
        return result;
    }
    SharedResult launchSwitch(CaptureSource to) { return launchSwitch(to, scope); }
    /// Switches and waits until nothing is left to do.
    SharedResult switchTo(CaptureSource source) {
        const auto result = launchSwitch(source);
        loop.runUntilIdle();
        return result;
    }
    /// Runs on `display1`, with nothing in the log.
    void runOnDisplay1() {
        switchTo(display1);
        calls.clear();
    }
    void launchStop() { scope.launch(note(engine->stop(), &calls)); }
    void stop() {
        launchStop();
        loop.runUntilIdle();
    }
    ScriptedCaptureService::StreamRecord& stream(std::size_t number) {
        return capture.stream(number);
    }
    void deliver(std::size_t streamNumber, const std::string& name) {
        stream(streamNumber).deliver(name);
        loop.runUntilIdle();
    }

    static PlatformError platformError(long code) { return {"Fake", code}; }

    const CaptureSource display1 = CaptureSource::display(1);
    const CaptureSource display2 = CaptureSource::display(2);
    const CaptureSource smallWindow = CaptureSource::window(10);

    SimulatedMainLoop loop;
    CallLog calls;
    RecordingLog log;
    ScriptedScreens screens;
    ScriptedCaptureService capture{loop, calls};
    std::unique_ptr<ScriptedDisplayLayer> owned = std::make_unique<ScriptedDisplayLayer>(calls);
    ScriptedDisplayLayer& layer = *owned;
    FrameRenderer renderer{std::move(owned)};
    std::unique_ptr<CaptureEngine> engine;
    TaskScope other{loop};
    TaskScope scope{loop};
};

} // namespace kestrove
