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

MUTATIONS = [
    # The controller.
    Mutation("start-while-stopping", CONTROLLER + "Lifecycle.cpp",
             "    if (state.isActive() || state == CaptureSessionState::stopping())\n"
             "        return;\n\n    const auto permission",
             "    if (state.isActive())\n        return;\n\n    const auto permission"),
    Mutation("stop-ends-whatever-runs-by-now", CONTROLLER + "Lifecycle.cpp",
             "    if (m_sessionState.get() == CaptureSessionState::stopping())\n"
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
]
