#pragma once

#include "Core/AppController/DiagnosticOutput.h"
#include "Core/Collaborators/CaptureControlling.h"
#include "Core/Collaborators/OutputControlling.h"
#include "Core/Collaborators/SourceDiscovery.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"
#include "Tests/Unit/Core/AppController/AwaitGate.h"

#include <fmt/format.h>
#include <map>
#include <string>
#include <vector>

namespace kestrove {

// The controller's collaborators, in memory. They share one log of what was asked of them, and one
// gate at which their suspending operations wait.

[[nodiscard]] inline std::string nameOf(CaptureSource source) {
    return fmt::format("{} {}", source.isDisplay() ? "display" : "window", source.identifier());
}

class ScriptedEngine final : public CaptureControlling {
public:
    ScriptedEngine(CallLog& calls, AwaitGate& gate)
        : m_calls(calls)
        , m_gate(gate) {}

    std::optional<CaptureSource> currentSource() const override { return source; }
    void setOnUnexpectedStop(std::function<void()> callback) override {
        unexpectedStop = std::move(callback);
    }
    void setExcludedWindowIDs(WindowIDSet windows) override { excluded = std::move(windows); }
    void setFPS(int framesPerSecond) override { fps = framesPerSecond; }
    Task<CaptureResult> start(CaptureSource toStart) override { return switchSource(toStart); }
    Task<CaptureResult> switchSource(CaptureSource to) override {
        m_calls.add("engine switch " + nameOf(to));
        co_await m_gate.pass("engine switch " + nameOf(to));
        const auto failure = failures.find(nameOf(to));
        if (failure != failures.end())
            co_return std::unexpected(failure->second);
        source = to;
        co_return Size{1920, 1080};
    }
    Task<void> stop() override {
        m_calls.add("engine stop");
        co_await m_gate.pass("engine stop");
        source.reset();
    }

    /// The platform ends the stream.
    void endStream() {
        source.reset();
        unexpectedStop();
    }
    void failFor(CaptureSource failing, CaptureError error) {
        failures.insert_or_assign(nameOf(failing), std::move(error));
    }

    std::optional<CaptureSource> source;
    std::function<void()> unexpectedStop;
    std::map<std::string, CaptureError> failures;
    WindowIDSet excluded;
    int fps = 0;

private:
    CallLog& m_calls;
    AwaitGate& m_gate;
};

class ScriptedLister final : public SourceSnapshotListing {
public:
    using Snapshot = SourceLister::Snapshot;

    ScriptedLister(CallLog& calls, AwaitGate& gate)
        : m_calls(calls)
        , m_gate(gate) {}

    Task<std::expected<Snapshot, PlatformError>> fetch(WindowIDSet excludingWindowIDs) override {
        m_calls.add("fetch");
        excluded = std::move(excludingWindowIDs);
        co_await m_gate.pass("fetch");
        if (failure)
            co_return std::unexpected(*failure);
        co_return snapshot;
    }

    void add(CaptureSourceInfo info) {
        snapshot.existingSources.insert(info.source);
        snapshot.onScreenSources.insert(info.source);
        auto& list = info.source.isDisplay() ? snapshot.lists.displays : snapshot.lists.windows;
        list.push_back(std::move(info));
    }
    void addDisplay(DisplayID display) {
        add({CaptureSource::display(display), fmt::format("Display {}", display), "1920 × 1080",
             std::nullopt});
    }
    void addWindow(WindowID window, WindowOwnerIdentity owner) {
        add({CaptureSource::window(window), fmt::format("Window {}", window), "Application",
             std::move(owner)});
    }
    void remove(CaptureSource source) {
        snapshot.existingSources.erase(source);
        snapshot.onScreenSources.erase(source);
        const auto isIt = [source](const auto& info) { return info.source == source; };
        std::erase_if(snapshot.lists.displays, isIt);
        std::erase_if(snapshot.lists.windows, isIt);
    }

    Snapshot snapshot;
    std::optional<PlatformError> failure;
    WindowIDSet excluded;

private:
    CallLog& m_calls;
    AwaitGate& m_gate;
};

class InertDisplayLayer final : public DisplayLayer {
public:
    void setHost(NativeViewHandle) override {}
    void enqueue(SampleBufferPointer) override {}
    void flush() override {}
    DisplayLayerStatus status() const override { return DisplayLayerStatus::unknown; }
};

class ScriptedRenderer final : public FrameRendering {
public:
    explicit ScriptedRenderer(CallLog& calls)
        : m_calls(calls)
        , m_view(m_layer) {}

    ContainerView& view() override { return m_view; }
    void flush() override { m_calls.add("flush"); }

private:
    CallLog& m_calls;
    InertDisplayLayer m_layer;
    ContainerView m_view;
};

class ScriptedContainer final : public OutputContentControlling {
public:
    explicit ScriptedContainer(CallLog& calls)
        : m_calls(calls) {}

    void setContentView(ContainerView* view) override {
        m_calls.add(view ? "show content" : "show placeholder");
        content = view;
    }

    ContainerView* content = nullptr;

private:
    CallLog& m_calls;
};

class ScriptedOutputControl final : public OutputWindowControlling {
public:
    explicit ScriptedOutputControl(CallLog& calls)
        : m_calls(calls) {}

    std::optional<WindowID> windowID() const override { return identifier; }
    void show() override { m_calls.add("show window"); }
    void setHidden(bool hidden) override { isHidden = hidden; }
    void setAlwaysOnTop(bool alwaysOnTop) override { isOnTop = alwaysOnTop; }
    void matchContentAspectRatio(Size pixelSize) override {
        m_calls.add(fmt::format("match {}x{}", pixelSize.width, pixelSize.height));
    }

    std::optional<WindowID> identifier = 900;
    std::optional<bool> isHidden;
    std::optional<bool> isOnTop;

private:
    CallLog& m_calls;
};

class ScriptedOverlay final : public ActiveSourceOverlayControlling {
public:
    explicit ScriptedOverlay(CallLog& calls)
        : m_calls(calls) {}

    std::optional<WindowID> windowID() const override { return identifier; }
    void show(CaptureSource source) override {
        m_calls.add("mark " + nameOf(source));
        marked = source;
    }
    void hide() override {
        m_calls.add("hide mark");
        marked.reset();
    }

    std::optional<WindowID> identifier = 901;
    std::optional<CaptureSource> marked;

private:
    CallLog& m_calls;
};

/// Ticks when a test says so.
class ScriptedScheduler final : public SourceRefreshScheduling {
public:
    explicit ScriptedScheduler(CallLog& calls)
        : m_calls(calls) {}

    void schedule(Seconds every, Operation scheduled) override {
        m_calls.add(fmt::format("refresh every {}", every.count()));
        operation = std::move(scheduled);
    }
    void cancel() override {
        m_calls.add("cancel refresh");
        operation = nullptr;
    }
    [[nodiscard]] bool isScheduled() const { return static_cast<bool>(operation); }
    void tick() { operation(); }

    Operation operation;

private:
    CallLog& m_calls;
};

class ScriptedExistence final : public WindowExistenceChecking {
public:
    WindowExistence existence(const ManualWindowSelection& of, SessionLockState) override {
        const auto found = answers.find(of.windowID);
        return found == answers.end() ? WindowExistence::exists : found->second;
    }

    std::map<WindowID, WindowExistence> answers;
};

class ScriptedLockState final : public SessionLockStateProviding {
public:
    SessionLockState state() const override { return SessionLockState::unlocked; }
};

class RecordedDiagnostics final : public DiagnosticOutput {
public:
    void writeLine(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;
};

} // namespace kestrove
