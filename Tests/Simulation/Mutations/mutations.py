"""Hand-made faults, each of which the simulation must catch.

A fault is a text of a source file and what stands in its place. The text must occur there once:
when the code changes, its fault changes with it.
"""

from typing import NamedTuple


class Mutation(NamedTuple):
    name: str
    file: str
    text: str
    instead: str


CONTROLLER = "Core/AppController/"
ENGINE = "Core/CaptureEngine/"
SHORTCUTS = "Core/GlobalShortcuts/GlobalShortcuts.cpp"
COORDINATOR = CONTROLLER + "ShortcutSettingsCoordinator.cpp"
VISIBILITY = "Core/SourceLister/SourceVisibilityCoordinator.cpp"
TRACKER = "Core/ActiveDisplayTracker/ActiveDisplayTracker.cpp"

MUTATIONS = [
    # The controller.
    Mutation("start-while-stopping", CONTROLLER + "Lifecycle.cpp",
             "    if (isOnOrStopping())\n        return;\n"
             "    const auto permission = m_with.permissionAccess.ensure();\n"
             "    m_permissionStatus.set(permission);\n"
             "    // A dialog may have run the main loop: whoever started meanwhile has begun the "
             "session.\n    if (isOnOrStopping())",
             "    if (isSessionActive())\n        return;\n"
             "    const auto permission = m_with.permissionAccess.ensure();\n"
             "    m_permissionStatus.set(permission);\n    if (isSessionActive())"),
    Mutation("stop-ends-whatever-runs-by-now", CONTROLLER + "Lifecycle.cpp",
             "    if (session == m_sessionNumber && "
             "m_sessionState.get() == CaptureSessionState::stopping())\n"
             "        m_sessionState.set(CaptureSessionState::stopped());\n"
             "    else\n        co_await restoreRunningStream();",
             "    m_sessionState.set(CaptureSessionState::stopped());"),
    Mutation("own-windows-are-captured", CONTROLLER + "Lifecycle.cpp",
             "    m_with.captureEngine.setExcludedWindowIDs(selfCaptureWindowIDs());\n", ""),
    Mutation("stop-goes-on-refreshing", CONTROLLER + "Lifecycle.cpp",
             "    stopSourceTracking();\n    cancelSourceRefresh();\n"
             "    m_sessionState.set(CaptureSessionState::stopping());",
             "    stopSourceTracking();\n"
             "    m_sessionState.set(CaptureSessionState::stopping());"),
    Mutation("safe-output-keeps-the-source", CONTROLLER + "Lifecycle.cpp",
             "    m_activeSource.set(std::nullopt);\n", ""),
    Mutation("safe-output-keeps-the-content", CONTROLLER + "Lifecycle.cpp",
             "        m_with.outputContainer.setContentView(nullptr);\n", ""),
    Mutation("old-source-until-the-switch-is-done", CONTROLLER + "Switching.cpp",
             "    presentSafeOutput();\n    const CaptureResult result = co_await "
             "m_with.captureEngine.switchSource(source);\n",
             "    const CaptureResult result = co_await "
             "m_with.captureEngine.switchSource(source);\n    presentSafeOutput();\n"),
    Mutation("wait-says-so-too-early", CONTROLLER + "Switching.cpp",
             "    co_await m_with.captureEngine.stop();\n    if (!isCurrent(request)) {\n"
             "        co_await settleOvertakenStream();\n        co_return;\n    }\n"
             "    presentSafeOutput();\n    m_isOutputSettled = true;\n"
             "    m_sessionState.set(CaptureSessionState::waitingForSource());",
             "    m_sessionState.set(CaptureSessionState::waitingForSource());\n"
             "    co_await m_with.captureEngine.stop();\n    if (!isCurrent(request)) {\n"
             "        co_await settleOvertakenStream();\n        co_return;\n    }\n"
             "    presentSafeOutput();\n    m_isOutputSettled = true;"),
    Mutation("recovery-flag-stays", CONTROLLER + "Recovery.cpp",
             "        co_return;\n    m_isHandlingSourceFailure = false;\n"
             "    if (isSessionActive() && !m_isFollowing)",
             "        co_return;\n    if (isSessionActive() && !m_isFollowing)"),
    Mutation("recovery-does-not-follow", CONTROLLER + "Recovery.cpp",
             "    if (isSessionActive() && !m_isFollowing)\n"
             "        beginFollowing(failedSource);\n",
             ""),
    Mutation("dead-stream-keeps-its-session", CONTROLLER + "Recovery.cpp",
             "    sourceVisibilityCoordinator().setInterruptedSource(source);\n"
             "    safelyStopAfterStreamInterruption(*source);",
             "    sourceVisibilityCoordinator().setInterruptedSource(source);"),
    Mutation("interrupted-source-is-forgotten", CONTROLLER + "Recovery.cpp",
             "    sourceVisibilityCoordinator().setInterruptedSource(source);\n", ""),
    Mutation("lists-never-forget", CONTROLLER + "Availability.cpp",
             "        return retaining.contains(info.source) && !listed.contains(info.source);",
             "        return !listed.contains(info.source);"),
    Mutation("ended-picks-stay", CONTROLLER + "Availability.cpp",
             "    m_with.settings.removeManualSources({terminated.begin(), terminated.end()});\n",
             ""),
    Mutation("mode-change-leaves-the-source", CONTROLLER + "Following.cpp",
             "    if (isSessionActive())\n        applyManualSources("
             "m_with.settings.manualSources.get());\n", ""),
    Mutation("who-failed-twice-is-given-up", CONTROLLER + "Following.cpp",
             "        retryFailedSource();\n        scheduleSourceRefresh();\n",
             "        scheduleSourceRefresh();\n"),
    Mutation("only-a-start-begins-to-follow", CONTROLLER + "Following.cpp",
             "    if (isActive(session) && hasSettledOn(source) && !m_isFollowing && "
             "!m_isHandlingSourceFailure)\n        beginFollowing();\n",
             "    (void)session;\n"),
    Mutation("overtaken-start-goes-on", CONTROLLER + "Lifecycle.cpp",
             "    co_await refreshAvailableSources();\n    if (session != m_sessionNumber)\n"
             "        co_return;\n",
             "    co_await refreshAvailableSources();\n"),
    Mutation("safe-stop-goes-on-after-its-session", CONTROLLER + "Lifecycle.cpp",
             "        if (!isActive(session)) {\n            co_await restoreRunningStream();\n"
             "            co_return;\n        }\n",
             "        (void)session;\n"),
    Mutation("safe-stop-leaves-what-came-meanwhile", CONTROLLER + "Lifecycle.cpp",
             "    } while (m_activeSource.get());\n    stopSourceTracking();\n",
             "    } while (false);\n    stopSourceTracking();\n    presentSafeOutput();\n"),
    Mutation("overtaken-switch-is-kept", CONTROLLER + "Switching.cpp",
             "        logError(\"capture switch failed\", result.error());\n"
             "    if (!isCurrent(request)) {",
             "        logError(\"capture switch failed\", result.error());\n"
             "    (void)request;\n    if (!isSessionActive()) {"),
    Mutation("frame-rate-is-not-heard-of", CONTROLLER + "AppController.cpp",
             "            m_with.captureEngine.setFPS(\n"
             "                static_cast<int>("
             "std::clamp<std::int64_t>(framesPerSecond, 1, 60)));\n",
             "            (void)framesPerSecond;\n"),
    # The engine.
    Mutation("overtaken-stream-is-kept", ENGINE + "Reconfiguration.cpp",
             "    // From here on, letting go of a stream that has started stops it.\n"
             "    if (isOvertaken())\n        co_return overtaken();\n",
             ""),
    Mutation("late-report-is-believed", ENGINE + "CaptureEngineState.cpp",
             "    if (stopped != running)\n        return;\n", ""),
    Mutation("stop-leaves-the-last-frame", ENGINE + "CaptureEngine.cpp",
             "    state->forgetStream();\n    state->hideFrames();\n",
             "    state->forgetStream();\n"),
    Mutation("stop-leaves-the-stream", ENGINE + "CaptureEngine.cpp",
             "    const auto live = state->running;\n    state->overtakeReconfigurations();\n"
             "    state->forgetStream();",
             "    const auto live = state->running;\n    state->overtakeReconfigurations();"),
    Mutation("stop-overtakes-nothing", ENGINE + "CaptureEngine.cpp",
             "    state->overtakeReconfigurations();\n", ""),
    Mutation("every-generation-is-shown", ENGINE + "CaptureEngineState.cpp",
             "    if (sample->generation() == acceptedGeneration)\n        renderer",
             "    renderer"),
    Mutation("retarget-without-hiding", ENGINE + "Reconfiguration.cpp",
             "    state->hideFrames();\n\n", ""),
    Mutation("stopped-meanwhile-starts-all-the-same", ENGINE + "Reconfiguration.cpp",
             "    if (attempt.isOvertaken())\n        co_return overtaken();\n    if (!content)",
             "    if (!content)"),
    Mutation("two-reconfigurations-at-once", ENGINE + "Reconfiguration.cpp",
             "    const auto turn = co_await state->turns->take();\n", ""),
    # The shortcut coordinator.
    Mutation("taking-back-is-taken-for-an-edit", COORDINATOR,
             "    if (m_isRestoring)\n        return;\n", ""),
    Mutation("refused-edit-is-left", COORDINATOR,
             "    m_tasks.post([this, inForce = m_appliedBindings] { writeBack(inForce); });\n",
             ""),
    Mutation("edit-is-saved-untried", COORDINATOR,
             "    if (m_globalShortcuts.install(m_handlers, bindings)) {\n"
             "        m_appliedBindings = bindings;\n",
             "    m_appliedBindings = bindings;\n"
             "    if (m_globalShortcuts.install(m_handlers, bindings)) {\n"),
    Mutation("edit-is-not-saved", COORDINATOR,
             "        m_appliedBindings = bindings;\n"
             "        m_settings.persistShortcutBindings(bindings);\n",
             "        m_appliedBindings = bindings;\n"),
    # The registry.
    Mutation("half-a-set-stays-registered", SHORTCUTS,
             "    removeFresh(fresh, failures);\n", ""),
    Mutation("refused-set-is-not-rolled-back", SHORTCUTS,
             "    removeFresh(fresh, failures);\n"
             "    restorePrevious(previous, unregistered, failures);\n",
             "    removeFresh(fresh, failures);\n"),
    Mutation("roll-back-tells-nothing", SHORTCUTS,
             "    m_registeredActions.set(keys(m_registrations));\n}\n\n"
             "bool GlobalShortcuts::refuse",
             "}\n\nbool GlobalShortcuts::refuse"),
    Mutation("unregistered-stays-known", SHORTCUTS,
             "        m_registrations.erase(action);\n        unregistered.insert(action);",
             "        unregistered.insert(action);"),
    # The display that the focus is on.
    Mutation("focus-is-not-followed", TRACKER,
             "[scheduleRecompute](const RunningApplication&) { scheduleRecompute(); });",
             "[](const RunningApplication&) {});"),
    Mutation("focus-is-where-the-smallest-window-is", TRACKER,
             "bounds.width * bounds.height > largest->width * largest->height",
             "bounds.width * bounds.height < largest->width * largest->height"),
]
