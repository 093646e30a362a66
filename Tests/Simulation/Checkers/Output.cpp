// What a viewer of the call can see.
#include "Tests/Simulation/Checkers/Checkers.h"
#include "Tests/Simulation/Checkers/Names.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrove::simulation {

using Kind = CaptureSessionState::Kind;

void Checkers::activeSourceChanges(const std::optional<CaptureSource>& source) {
    if (!source) {
        m_clearedAt = m_desktop.loop().now();
        return;
    }
    // Whatever is in the layer now is seen as soon as the source is said to be shown.
    const auto frame = m_program.displayLayer().visible();
    if (frame && sourceOf(frame->filter) != *source)
        noteMeanwhile("only the source that is shown is in the layer when it is shown",
                      fmt::format("{} is in it, {} is shown", nameOf(sourceOf(frame->filter)),
                                  nameOf(source)));
}

/// Everything that was in the layer since the last look, seen or behind the placeholder: what is in
/// it when the placeholder goes is seen.
std::optional<Failure> Checkers::checkLayer() {
    const auto& changes = m_program.displayLayer().changes();
    for (; m_lookedAtChanges < changes.size(); ++m_lookedAtChanges) {
        const auto& [at, frame] = changes[m_lookedAtChanges];
        // What was in it before it was cleared may have been there.
        const bool isAfter = at > m_clearedAt || m_lookedAtChanges + 1 == changes.size();
        if (frame && isAfter && frame->capturedAt < m_clearedAt)
            return Failure{"nothing from before the output was cleared",
                           fmt::format("{} of {} s at {} s, cleared at {} s",
                                       nameOf(sourceOf(frame->filter)), frame->capturedAt.count(),
                                       at.count(), m_clearedAt.count())};
    }
    return {};
}

/// What may be in the layer when everything that can be done has been done.
std::optional<Failure> Checkers::checkOutputFollowsState() const {
    const auto state = m_program.controller().sessionState().get();
    const auto active = m_program.controller().activeSource().get();
    if (m_program.seen() && state.kind() != Kind::running)
        return Failure{"only a running session is seen", nameOf(state)};
    if (m_program.displayLayer().visible() &&
        !isOneOf(state.kind(), {Kind::running, Kind::switching}))
        return Failure{"an empty layer while nothing is shown", nameOf(state)};
    // One that stops itself says so when its stream has stopped, and shows nothing until then.
    if (state.kind() == Kind::running && !active &&
        m_desktop.capture().stopCapture.pendingCount() == 0)
        return Failure{"a running session has a source", ""};
    if (active &&
        isOneOf(state.kind(), {Kind::switching, Kind::waitingForSource, Kind::recoveryRequired}))
        return Failure{"no source is said to be shown while none is",
                       fmt::format("{}: {}", nameOf(state), nameOf(active))};
    return {};
}

/// The frame on the user's own screen marks what is shown, and nothing else.
std::optional<Failure> Checkers::checkMark() const {
    const auto& mark = m_program.overlay();
    const auto active = m_program.controller().activeSource().get();
    const auto state = m_program.controller().sessionState().get();
    if (mark.isVisible() && (state.kind() != Kind::running || !active))
        return Failure{"only what is shown is marked", nameOf(state)};
    return {};
}

std::optional<Failure> Checkers::checkMarkIsInPlace() const {
    const auto& mark = m_program.overlay();
    const auto active = m_program.controller().activeSource().get();
    if (m_program.controller().sessionState().get().kind() != Kind::running || !active)
        return {};
    if (active->isDisplay()) {
        const auto* const display = m_desktop.findDisplay(active->identifier());
        if (display && (!mark.isVisible() || mark.frame() != display->frame))
            return Failure{"the display that is shown is marked", nameOf(active)};
        return {};
    }
    const auto* const window = m_desktop.findWindow(active->identifier());
    if (window && mark.isVisible() && mark.frame() != m_desktop.flipped(window->frame))
        return Failure{"the mark is where the window is", nameOf(active)};
    const bool isInFront =
        window && window->isOnScreen && window->layer == 0 &&
        m_desktop.windowAt({window->frame.x + window->frame.width / 2,
                            window->frame.y + window->frame.height / 2}) == window;
    if (isInFront && !mark.isVisible())
        return Failure{"the window that is shown is marked", nameOf(active)};
    return {};
}

/// What the program has asked of the capture service since the last look. A session may have begun
/// and ended in between.
std::optional<Failure> Checkers::checkRequests() {
    const auto& records = m_desktop.capture().records();
    const auto state = m_program.controller().sessionState().get();
    m_mayHaveCaptured |= mayCapture(state);
    const auto frameRate =
        std::clamp(m_program.settings().targetFPS.get(), std::int64_t{1}, std::int64_t{60});
    m_frameRates.insert(frameRate);
    for (; m_lookedAtRecords < records.size(); ++m_lookedAtRecords) {
        const auto& record = records[m_lookedAtRecords];
        const auto call = record.call;
        const bool captures = call == CaptureCall::makeStream ||
                              call == CaptureCall::startCapture ||
                              call == CaptureCall::updateContentFilter;
        if (captures && !m_mayHaveCaptured)
            return Failure{"nothing is captured while nothing is shared", nameOf(state)};
        if (call == CaptureCall::captureImage)
            continue;
        if (record.filter)
            m_lastAskedFor = sourceOf(*record.filter);
        if (!record.configuration)
            continue;
        const auto asked = record.configuration->minimumFrameInterval;
        if (asked.value != 1 || !m_frameRates.contains(asked.timescale))
            return Failure{"frames are asked for as often as the settings say",
                           fmt::format("every {}/{} s", asked.value, asked.timescale)};
    }
    m_mayHaveCaptured = mayCapture(state);
    if (!isOneOf(state.kind(), {Kind::starting, Kind::switching, Kind::stopping}))
        m_frameRates = {frameRate};
    const auto active = m_program.controller().activeSource().get();
    if (state.kind() == Kind::running && active && m_lastAskedFor != active)
        return Failure{
            "what is shown is what was asked for last",
            fmt::format("{} is shown, {} was asked for", nameOf(active), nameOf(m_lastAskedFor))};
    return {};
}

std::optional<Failure> Checkers::checkSeen() const {
    const auto frame = m_program.seen();
    if (!frame)
        return {};
    const auto source = sourceOf(frame->filter);
    const auto active = m_program.controller().activeSource().get();
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
    const auto mark = static_cast<WindowID>(m_program.overlay().windowNumber());
    if (source.isDisplay() && frame->picture.shows(mark))
        return Failure{"the frame around the source is in no picture", nameOf(source)};
    return {};
}

std::optional<Failure> Checkers::checkPictureIsOfNow() const {
    if (m_program.controller().sessionState().get().kind() != Kind::running)
        return {};
    const auto frame = m_program.seen();
    if (!frame)
        return Failure{"a running session shows its source",
                       nameOf(m_program.controller().activeSource().get())};
    const auto now = takePicture(m_desktop, frame->filter, CursorShown::yes);
    if (!now || *now != frame->picture)
        return Failure{"never a stale frame", nameOf(sourceOf(frame->filter))};
    return {};
}

} // namespace kestrove::simulation
