#pragma once

#include "Async/Signal.h"
#include "Desktop/Workspace.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"

#include <map>

namespace kestrove {

/// Applications and session events as a test says them.
class ScriptedWorkspace final : public Workspace {
public:
    explicit ScriptedWorkspace(CallLog& calls)
        : m_calls(calls) {}

    std::optional<RunningApplication> frontmostApplication() override {
        m_calls.add("frontmost application");
        return frontmost;
    }
    std::optional<RunningApplication> runningApplication(ProcessID process) override {
        const auto found = running.find(process);
        return found == running.end() ? std::nullopt : std::optional(found->second);
    }
    Subscription onApplicationActivated(ApplicationCallback callback) override {
        return m_calls.watch("activation", activated.subscribe(std::move(callback)));
    }
    Subscription onApplicationTerminated(ApplicationCallback callback) override {
        return m_calls.watch("termination", terminated.subscribe(std::move(callback)));
    }
    Subscription onSessionResignedActive(Callback callback) override {
        return m_calls.watch("session resigned", sessionResigned.subscribe(std::move(callback)));
    }
    Subscription onSessionBecameActive(Callback callback) override {
        return m_calls.watch("session active", sessionBecameActive.subscribe(std::move(callback)));
    }
    Subscription onScreensSlept(Callback callback) override {
        return m_calls.watch("screens slept", screensSlept.subscribe(std::move(callback)));
    }
    Subscription onScreensWoke(Callback callback) override {
        return m_calls.watch("screens woke", screensWoke.subscribe(std::move(callback)));
    }

    void run(ProcessID process, std::optional<std::string> bundleIdentifier) {
        running[process] = {process, std::move(bundleIdentifier)};
    }
    void activate(ProcessID process) {
        frontmost = RunningApplication{process, "org.example.front"};
        activated.emit(*frontmost);
    }

    std::optional<RunningApplication> frontmost;
    std::map<ProcessID, RunningApplication> running;
    Signal<RunningApplication> activated;
    Signal<RunningApplication> terminated;
    Signal<> sessionResigned;
    Signal<> sessionBecameActive;
    Signal<> screensSlept;
    Signal<> screensWoke;

private:
    CallLog& m_calls;
};

} // namespace kestrove
