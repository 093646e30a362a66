#include "Tests/Simulation/Checkers/Checkers.h"

#include "Tests/Simulation/Checkers/Names.h"

#include <fmt/format.h>
#include <utility>

namespace kestrove::simulation {

using Kind = CaptureSessionState::Kind;

Checkers::Checkers(SimulatedDesktop& desktop, Program& program)
    : m_desktop(desktop)
    , m_program(program)
    , m_lookedAtRecords(desktop.capture().records().size()) {
    m_watching.push_back(
        program.controller().sessionState().subscribe([this](const CaptureSessionState& state) {
            stateChanges(state);
            followInterruption(state);
        }));
    m_watching.push_back(program.controller().activeSource().subscribe(
        [this](const std::optional<CaptureSource>& source) {
            activeSourceChanges(source);
            if (source)
                m_lastActive = source;
        }));
    m_watching.push_back(program.settings().manualSources.subscribe(
        [this](const std::vector<CaptureSource>& picked) {
            if (m_interrupted && !contains(picked, *m_interrupted))
                m_interrupted.reset();
        }));
    m_watching.push_back(program.controller().availableSources().subscribe(
        [this](const auto&) { m_failedListings = m_desktop.capture().failedListings(); }));
    m_watching.push_back(program.globalShortcuts().operationFailures().subscribe(
        [this](const ShortcutFailures& failures) { shortcutFailuresChange(failures); }));
    m_watching.push_back(program.globalShortcuts().registeredActions().subscribe(
        [this](const ShortcutActions& actions) { registeredActionsChange(actions); }));
}

void Checkers::noteMeanwhile(const char* rule, std::string detail) {
    if (!m_brokenMeanwhile)
        m_brokenMeanwhile = Failure{rule, std::move(detail)};
}

std::optional<Failure> Checkers::always() {
    m_hasLackedPermission |= !m_desktop.isRecordingAllowed();
    if (m_brokenMeanwhile)
        return m_brokenMeanwhile;
    if (auto failure = checkTexts())
        return failure;
    if (auto failure = checkLayer())
        return failure;
    if (auto failure = checkRequests())
        return failure;
    return checkSeen();
}

std::optional<Failure> Checkers::whenIdle() {
    // A stream whose start is answered late, after a stop, runs until the program hears of it.
    if (const auto streams = m_desktop.capture().runningStreamCount(); streams > 1)
        return Failure{"at most one stream", fmt::format("{} run", streams)};
    const auto& controller = m_program.controller();
    if (controller.sessionState().get().kind() == Kind::running &&
        controller.activeSource().get() && !isOwnStreamThere() &&
        m_desktop.capture().stopCapture.pendingCount() == 0)
        return Failure{"the stream of a running session is kept", ""};
    if (auto failure = checkMark())
        return failure;
    if (auto failure = checkChosen())
        return failure;
    return checkOutputFollowsState();
}

std::optional<Failure> Checkers::afterUse() const {
    return checkHotKeys();
}

std::optional<Failure> Checkers::whenSettled() const {
    const auto state = m_program.controller().sessionState().get();
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
    if (auto failure = checkHotKeys())
        return failure;
    if (auto failure = checkHotKeysWork())
        return failure;
    if (auto failure = checkPicker())
        return failure;
    if (auto failure = checkMarkIsInPlace())
        return failure;
    if (auto failure = checkInterruptionIsOver())
        return failure;
    return checkPictureIsOfNow();
}

std::optional<Failure> Checkers::whileSharing() const {
    if (auto failure = whenSettled())
        return failure;
    const auto state = m_program.controller().sessionState().get();
    const auto& settings = m_program.settings();
    const auto& picked = settings.manualSources.get();
    const bool canShare = settings.followMode.get() != FollowMode::manual ||
                          (!picked.empty() && std::ranges::all_of(picked, [this](auto source) {
                              return canBeCaptured(m_desktop, source);
                          }));
    if (canShare && state.kind() != CaptureSessionState::Kind::running)
        return Failure{"after a start on a calm desktop the session runs", nameOf(state)};
    if (auto failure = checkLists())
        return failure;
    return checkFollowed();
}

std::optional<Failure> Checkers::afterStop() const {
    const auto state = m_program.controller().sessionState().get();
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
