#include "Tests/Simulation/Checkers.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrove::simulation {

namespace {

using Kind = CaptureSessionState::Kind;

bool isOneOf(Kind kind, std::initializer_list<Kind> kinds) {
    return std::ranges::find(kinds, kind) != kinds.end();
}

bool isAllowed(CaptureSessionState from, CaptureSessionState to) {
    if (from == to)
        return true;
    if (from.isActive())
        return !isOneOf(to.kind(), {Kind::stopped, Kind::starting});
    if (from.kind() == Kind::stopping)
        return to.kind() == Kind::stopped;
    return isOneOf(to.kind(), {Kind::starting, Kind::permissionRequired});
}

const char* nameOf(CaptureSessionState state) {
    switch (state.kind()) {
    case Kind::permissionRequired:
        return "permissionRequired";
    case Kind::recoveryRequired:
        return "recoveryRequired";
    case Kind::stopped:
        return "stopped";
    case Kind::starting:
        return "starting";
    case Kind::running:
        return "running";
    case Kind::switching:
        return "switching";
    case Kind::waitingForSource:
        return "waitingForSource";
    case Kind::stopping:
        return "stopping";
    }
    return "?";
}

std::string nameOf(const std::optional<CaptureSource>& source) {
    return source ? fmt::format("{} {}", source->isDisplay() ? "display" : "window",
                                source->identifier())
                  : "none";
}

CaptureSource sourceOf(const ContentFilter& filter) {
    if (const auto* const display = std::get_if<DisplayFilter>(&filter))
        return CaptureSource::display(display->displayID);
    return CaptureSource::window(std::get<WindowFilter>(filter).windowID);
}

/// Windows are captured from what is on the screen.
bool canBeCaptured(const SimulatedDesktop& desktop, CaptureSource source) {
    if (source.isDisplay())
        return desktop.findDisplay(source.identifier()) != nullptr;
    const auto* const window = desktop.findWindow(source.identifier());
    return window && window->isOnScreen;
}

} // namespace

Checkers::Checkers(SimulatedDesktop& desktop, Program& program)
    : m_desktop(desktop)
    , m_program(program) {
    m_watching.push_back(program.controller.sessionState().subscribe(
        [this](const CaptureSessionState& state) { stateChanges(state); }));
    m_watching.push_back(program.controller.activeSource().subscribe(
        [this](const std::optional<CaptureSource>& source) {
            if (!source)
                m_clearedAt = m_desktop.loop().now();
        }));
}

void Checkers::stateChanges(CaptureSessionState to) {
    const auto from = m_program.controller.sessionState().get();
    if (!isAllowed(from, to) && !m_brokenMeanwhile)
        m_brokenMeanwhile = Failure{"only transitions of the table",
                                    fmt::format("{} to {}", nameOf(from), nameOf(to))};
}

std::optional<Failure> Checkers::always() {
    if (m_brokenMeanwhile)
        return m_brokenMeanwhile;
    if (m_program.controller.sessionState().get().statusMessage().empty())
        return Failure{"every state has a text", nameOf(m_program.controller.sessionState().get())};
    return checkSeen();
}

std::optional<Failure> Checkers::whenIdle() const {
    // A stream whose start is answered late, after a stop, runs until the program hears of it.
    if (const auto streams = m_desktop.capture().runningStreamCount(); streams > 1)
        return Failure{"at most one stream", fmt::format("{} run", streams)};
    return {};
}

std::optional<Failure> Checkers::checkSeen() const {
    const auto frame = m_program.seen();
    if (!frame)
        return {};
    const auto source = sourceOf(frame->filter);
    const auto active = m_program.controller.activeSource().get();
    if (active != source)
        return Failure{"only the active source is seen",
                       fmt::format("{} is seen, {} is active", nameOf(source), nameOf(active))};
    if (frame->capturedAt < m_clearedAt)
        return Failure{"nothing from before the output was cleared",
                       fmt::format("of {} s, cleared at {} s", frame->capturedAt.count(),
                                   m_clearedAt.count())};
    const auto* const window = m_program.window();
    if (window && source.isDisplay() &&
        frame->picture.shows(static_cast<WindowID>(window->windowNumber())))
        return Failure{"our own windows are in no picture", nameOf(source)};
    return {};
}

std::optional<Failure> Checkers::whenSettled() const {
    const auto state = m_program.controller.sessionState().get();
    if (isOneOf(state.kind(), {Kind::starting, Kind::switching, Kind::stopping}))
        return Failure{"every state settles", nameOf(state)};
    const auto streams = m_desktop.capture().runningStreamCount();
    const std::size_t wanted = state.kind() == Kind::running ? 1 : 0;
    if (streams != wanted)
        return Failure{"a stream runs exactly while the session does",
                       fmt::format("{}, {} streams", nameOf(state), streams)};
    if (auto failure = checkSchedule())
        return failure;
    if (auto failure = checkStored())
        return failure;
    return checkPictureIsOfNow();
}

std::optional<Failure> Checkers::checkSchedule() const {
    const auto state = m_program.controller.sessionState().get();
    const bool isScheduled = m_program.scheduler.isScheduled;
    const bool mustBe = state.isActive();
    const bool mustNotBe =
        state.kind() == Kind::stopped ||
        (state.recoveryReason() && *state.recoveryReason() != CaptureRecoveryReason::streamStopped);
    if ((mustBe && !isScheduled) || (mustNotBe && isScheduled))
        return Failure{"the refresh runs exactly when it should",
                       fmt::format("{}, {}", nameOf(state), isScheduled ? "runs" : "does not")};
    return {};
}

std::optional<Failure> Checkers::checkStored() const {
    SimulatedUserDefaults defaults(m_desktop);
    const AppSettings stored(defaults);
    const auto& live = m_program.settings;
    const bool same = stored.followMode.get() == live.followMode.get() &&
                      stored.targetFPS.get() == live.targetFPS.get() &&
                      stored.alwaysOnTop.get() == live.alwaysOnTop.get() &&
                      stored.hideOutputWindow.get() == live.hideOutputWindow.get() &&
                      stored.manualSources.get() == live.manualSources.get() &&
                      stored.manualWindowSelections() == live.manualWindowSelections();
    if (!same)
        return Failure{"what is stored is what is in memory", ""};
    return {};
}

std::optional<Failure> Checkers::checkPictureIsOfNow() const {
    if (m_program.controller.sessionState().get().kind() != Kind::running)
        return {};
    const auto frame = m_program.seen();
    if (!frame)
        return Failure{"a running session shows its source",
                       nameOf(m_program.controller.activeSource().get())};
    const auto now = takePicture(m_desktop, frame->filter, CursorShown::yes);
    if (!now || *now != frame->picture)
        return Failure{"never a stale frame", nameOf(sourceOf(frame->filter))};
    return {};
}

std::optional<Failure> Checkers::whileSharing() const {
    if (auto failure = whenSettled())
        return failure;
    const auto state = m_program.controller.sessionState().get();
    const auto& settings = m_program.settings;
    const auto& picked = settings.manualSources.get();
    const bool canShare = settings.followMode.get() != FollowMode::manual ||
                          (!picked.empty() && std::ranges::all_of(picked, [this](auto source) {
                              return canBeCaptured(m_desktop, source);
                          }));
    if (canShare && state.kind() != CaptureSessionState::Kind::running)
        return Failure{"after a start on a calm desktop the session runs", nameOf(state)};
    return checkFollowed();
}

std::optional<Failure> Checkers::checkFollowed() const {
    const auto& settings = m_program.settings;
    const auto active = m_program.controller.activeSource().get();
    std::optional<CaptureSource> wanted;
    if (settings.followMode.get() == FollowMode::mouse) {
        for (const auto& display : m_desktop.displays())
            if (display.frame.contains(m_desktop.pointer()))
                wanted = CaptureSource::display(display.displayID);
    } else if (settings.followMode.get() == FollowMode::manual) {
        const auto& picked = settings.manualSources.get();
        if (picked.size() == 1)
            wanted = picked.front();
        else if (active && std::ranges::find(picked, *active) == picked.end())
            return Failure{"by hand, only what was picked is shown", nameOf(active)};
    }
    if (wanted && canBeCaptured(m_desktop, *wanted) && active != wanted)
        return Failure{"the source that the follow mode asks for",
                       fmt::format("{} is shown, {} is wanted", nameOf(active), nameOf(wanted))};
    return {};
}

std::optional<Failure> Checkers::afterStop() const {
    const auto state = m_program.controller.sessionState().get();
    if (isOneOf(state.kind(), {Kind::running, Kind::starting, Kind::switching,
                               Kind::waitingForSource, Kind::stopping}))
        return Failure{"stop ends every session", nameOf(state)};
    if (m_desktop.capture().runningStreamCount() != 0)
        return Failure{"no stream after a stop", nameOf(state)};
    if (m_program.seen())
        return Failure{"nothing is seen after a stop", nameOf(state)};
    return checkSchedule();
}

} // namespace kestrove::simulation
