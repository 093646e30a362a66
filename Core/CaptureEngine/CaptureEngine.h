#pragma once

#include "Async/MainLoop.h"
#include "Core/Collaborators/CaptureControlling.h"
#include "Core/FrameRenderer/FrameRenderer.h"
#include "Desktop/ScreenCapture.h"
#include "Desktop/Screens.h"
#include "Desktop/SystemLog.h"

#include <functional>
#include <memory>
#include <string>

namespace kestrove {

/// What the capture engine needs of the desktop. All of it outlives the engine, every task that the
/// engine gave out and every report of a stream.
struct CaptureEnginePlatform {
    MainLoop& loop;
    ScreenCapture& capture;
    Screens& screens;
    SystemLog& log;
    /// The log's subsystem, and the first part of the sample queue's label.
    std::string bundleIdentifier;
};

/// Owns the one capture stream of the application: turns a source into a content filter and a
/// stream configuration, starts the stream or retargets the running one, and shows its frames.
///
/// Samples arrive on a serial queue of its own, where they are only looked at; those to show cross
/// to the main thread. There a frame is shown only if it was made under the configuration that is
/// wanted now. A frame of an earlier source that is still on its way when the layer is flushed, or
/// that the platform makes before it has taken a new filter over, is therefore never shown, and
/// neither is one of a stream that was stopped or forgotten.
///
/// Reconfigurations take effect one after the other, in the order of their calls, so that the last
/// one wins and no two of them create a stream each. `stop` waits for none of them: those in
/// progress fail, and a stream that one of them was starting is stopped as soon as it has started.
///
/// Errors: those of the platform are passed on unchanged; its own are `displayNotFound` and
/// `windowNotFound`. A reconfiguration that was overtaken by `stop` fails with a platform error of
/// the domain "kestrove.CaptureEngine".
///
/// Thread: main. Lifetime: destroying the engine stops the stream; its tasks may be dropped at any
/// time and may outlive it, in which case they fail or just end. A retarget dropped while the
/// platform works leaves open what the stream shows, so the stream is stopped and forgotten.
class CaptureEngine final : public CaptureControlling {
public:
    CaptureEngine(FrameRenderer& renderer, CaptureEnginePlatform platform);
    CaptureEngine(const CaptureEngine&) = delete;
    CaptureEngine& operator=(const CaptureEngine&) = delete;
    ~CaptureEngine() override;

    std::optional<CaptureSource> currentSource() const override;
    void setOnUnexpectedStop(std::function<void()> callback) override;
    void setExcludedWindowIDs(WindowIDSet windows) override;
    void setFPS(int framesPerSecond) override;
    Task<CaptureResult> start(CaptureSource source) override;
    Task<CaptureResult> switchSource(CaptureSource to) override;
    Task<void> stop() override;

private:
    class State;
    class Reconfiguration;
    static Task<void> stop(std::shared_ptr<State> state);

    /// Shared with the tasks, the sample handlers and the stop reports, which may outlive the
    /// engine.
    std::shared_ptr<State> m_state;
};

} // namespace kestrove
