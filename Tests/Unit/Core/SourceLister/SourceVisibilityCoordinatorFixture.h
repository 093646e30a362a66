#pragma once

#include "Async/Completion.h"
#include "Async/TaskScope.h"
#include "Core/SourceLister/SourceVisibilityCoordinator.h"
#include "Platform/Simulated/SimulatedMainLoop.h"
#include "Tests/Support/ScriptedDesktop/CallLog.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>

/// Of its own, so that other fixtures of the program can have such collaborators too.
namespace kestrove::sourceVisibilityTests {

/// What a fetch ends with.
using Fetched = std::expected<SourceLister::Snapshot, PlatformError>;

/// Fetches end when the test says so.
class ScriptedLister final : public SourceSnapshotListing {
public:
    ScriptedLister(MainLoop& loop, CallLog& calls)
        : m_loop(loop)
        , m_calls(calls) {}

    Task<Fetched> fetch(WindowIDSet excludingWindowIDs) override {
        std::string call = "fetch without";
        for (const auto window : excludingWindowIDs)
            call += " " + std::to_string(window);
        m_calls.add(call);
        pending.emplace_back(m_loop);
        const auto completion = pending.back();
        co_return co_await completion;
    }

    std::vector<Completion<Fetched>> pending;

private:
    MainLoop& m_loop;
    CallLog& m_calls;
};

class ScriptedChecker final : public WindowExistenceChecking {
public:
    explicit ScriptedChecker(CallLog& calls)
        : m_calls(calls) {}

    WindowExistence existence(const ManualWindowSelection& of,
                              SessionLockState lockState) override {
        m_calls.add("check " + std::to_string(of.windowID) +
                    (lockState == SessionLockState::locked ? " locked" : " unlocked"));
        const auto found = byOwner.find(of.owner.bundleIdentifier);
        return found == byOwner.end() ? WindowExistence::exists : found->second;
    }

    std::map<std::string, WindowExistence> byOwner;

private:
    CallLog& m_calls;
};

class ScriptedLockState final : public SessionLockStateProviding {
public:
    SessionLockState state() const override { return lockState; }

    SessionLockState lockState = SessionLockState::unlocked;
};

/// Its two tasks end when the test says so.
class ScriptedSession final : public SourceSessionControlling {
public:
    ScriptedSession(MainLoop& loop, CallLog& calls)
        : stopped(loop)
        , resumed(loop)
        , m_calls(calls) {}

    void safelyStopAfterStreamInterruption(CaptureSource /*source*/) override {
        m_calls.add("stop after interruption");
    }
    Task<void> safelyStopIfActiveSourceTerminated(CaptureSourceSet terminated) override {
        m_calls.add("stop if among " + std::to_string(terminated.size()));
        lastTerminated = terminated;
        co_await stopped;
        m_calls.add("stopped");
    }
    Task<bool> resumeInterruptedSource(CaptureSource source) override {
        m_calls.add("resume " + std::to_string(source.identifier()));
        co_return co_await resumed;
    }
    void cancelSourceRefresh() override { m_calls.add("cancel refresh"); }

    CaptureSourceSet lastTerminated;
    Completion<bool> stopped;
    Completion<bool> resumed;

private:
    CallLog& m_calls;
};

/// A coordinator between a lister, a checker and a session whose answers the test gives. Windows 5
/// and 6 and display 1 are there and on screen.
class SourceVisibilityCoordinatorFixture : public testing::Test {
protected:
    using Calls = std::vector<std::string>;
    using RefreshResult = SourceVisibilityCoordinator::RefreshResult;

    SourceVisibilityCoordinatorFixture() {
        m_snapshot.lists.displays = {{display1, "Left", "1 × 1", std::nullopt}};
        m_snapshot.existingSources = {display1, window5, window6};
        m_snapshot.onScreenSources = {display1, window5, window6};
    }

    static Task<void> run(SourceVisibilityCoordinator& coordinator,
                          std::vector<ManualWindowSelection> selections,
                          std::vector<CaptureSource> selected, std::optional<RefreshResult>* into) {
        WindowIDSet excluded{77, 78};
        auto result = co_await coordinator.refresh(std::move(selections), std::move(selected),
                                                   std::move(excluded));
        *into = std::move(result);
    }
    /// Starts a refresh for the windows 5 and 6 and display 1, all of them picked.
    void startRefresh() { startRefresh({selection5, selection6}, {display1, window5, window6}); }
    void startRefresh(std::vector<ManualWindowSelection> selections,
                      std::vector<CaptureSource> selected) {
        m_result.reset();
        m_scope->launch(run(m_coordinator, std::move(selections), std::move(selected), &m_result));
        m_loop.runUntilIdle();
    }
    void answer(Fetched fetched) {
        for (const auto& pending : std::exchange(m_lister.pending, {}))
            pending.complete(fetched);
        m_loop.runUntilIdle();
    }
    void finish(const Completion<bool>& completion, bool value = true) {
        completion.complete(value);
        m_loop.runUntilIdle();
    }
    Calls calls() { return m_calls.take(); }
    const SourceVisibilityCoordinator::Refresh& refreshed() { return ***m_result; }
    [[nodiscard]] bool hasRefreshed() const {
        return m_result && m_result->has_value() && (*m_result)->has_value();
    }
    /// The refresh has ended, and has neither resumed `source` nor given it up.
    void expectLeftAlone(CaptureSource source) {
        EXPECT_TRUE(hasRefreshed());
        for (const auto& call : calls())
            EXPECT_TRUE(call.starts_with("fetch") || call.starts_with("check")) << call;
        EXPECT_EQ(m_coordinator.interruptedSource(), source);
    }

    static inline const auto display1 = CaptureSource::display(1);
    static inline const auto window5 = CaptureSource::window(5);
    static inline const auto window6 = CaptureSource::window(6);
    static inline const ManualWindowSelection selection5{5, {10, "a"}};
    static inline const ManualWindowSelection selection6{6, {11, "b"}};

    SimulatedMainLoop m_loop;
    CallLog m_calls;
    ScriptedLister m_lister{m_loop, m_calls};
    ScriptedChecker m_checker{m_calls};
    ScriptedLockState m_lockState;
    ScriptedSession m_session{m_loop, m_calls};
    SourceVisibilityCoordinator m_coordinator{m_lister, m_checker, m_lockState, &m_session};
    SourceLister::Snapshot m_snapshot;
    std::optional<RefreshResult> m_result;
    std::unique_ptr<TaskScope> m_scope = std::make_unique<TaskScope>(m_loop);
};

} // namespace kestrove::sourceVisibilityTests
