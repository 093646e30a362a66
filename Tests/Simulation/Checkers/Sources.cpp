// Which sources are offered, shown and waited for.
#include "Tests/Simulation/Checkers/Checkers.h"
#include "Tests/Simulation/Checkers/Names.h"

#include <algorithm>
#include <fmt/format.h>

namespace kestrove::simulation {

using Kind = CaptureSessionState::Kind;

void Checkers::followInterruption(CaptureSessionState to) {
    const auto interrupted =
        CaptureSessionState::recoveryRequired(CaptureRecoveryReason::streamStopped);
    if (to != interrupted)
        m_interrupted.reset();
    else if (m_program.controller().sessionState().get() != interrupted)
        m_interrupted = m_lastActive;
    const auto& picked = m_program.settings().manualSources.get();
    if (m_interrupted && !contains(picked, *m_interrupted))
        m_interrupted.reset();
}

/// After some calm refreshes.
std::optional<Failure> Checkers::checkInterruptionIsOver() const {
    if (!m_interrupted)
        return {};
    if (canBeCaptured(m_desktop, *m_interrupted))
        return Failure{"an interrupted chosen source that is back runs again",
                       nameOf(m_interrupted)};
    return {};
}

/// What is seen is what the user asks for: of the picks one, or a display, once one is known.
std::optional<Failure> Checkers::checkChosen() {
    const auto active = m_program.controller().activeSource().get();
    if (!m_program.seen() || !active)
        return {};
    const auto& settings = m_program.settings();
    const bool isByHand = settings.followMode.get() == FollowMode::manual;
    const bool isChosen =
        isByHand ? contains(settings.manualSources.get(), *active) : active->isDisplay();
    // One that is plugged in is known with the next refresh, and after one that failed, none is.
    const bool isNoneKnown = m_desktop.displays().empty() ||
                             m_program.controller().availableSources().get().displays.empty() ||
                             m_desktop.capture().failedListings() > m_failedListings;
    if (!isByHand && isNoneKnown)
        m_shownForWantOfADisplay = active;
    else if (isChosen || active != m_shownForWantOfADisplay)
        m_shownForWantOfADisplay.reset();
    if (!isChosen && !m_shownForWantOfADisplay)
        return Failure{"nothing is seen that the user does not ask for", nameOf(active)};
    return {};
}

/// The picker lists what was there when it was opened, and comes to an end with it.
std::optional<Failure> Checkers::checkPicker() const {
    const auto& picker = m_program.picker();
    if (!picker)
        return {};
    if (picker->isLoading().get())
        return Failure{"the picker comes to an end with loading", ""};
    for (const auto& preview : picker->windows().get()) {
        const auto* const window = m_desktop.findWindow(preview.id.identifier());
        if (window && window->processID == m_desktop.ownProcess())
            return Failure{"our own windows are not in the picker", nameOf(preview.id)};
    }
    return {};
}

/// After the refreshes of a running session: what is offered is what is there, and what was picked
/// and is away for a while.
std::optional<Failure> Checkers::checkLists() const {
    const auto& picked = m_program.settings().manualSources.get();
    for (const auto& source : picked) {
        if (source.isWindow() && !m_desktop.findWindow(source.identifier()))
            return Failure{"a pick that has ended is given up", nameOf(source)};
    }
    if (m_program.controller().sessionState().get().kind() != Kind::running)
        return {};
    const auto& lists = m_program.controller().availableSources().get();
    std::vector<CaptureSource> offered;
    for (const auto& info : lists.displays) {
        offered.push_back(info.source);
        if (!m_desktop.findDisplay(info.source.identifier()) && !contains(picked, info.source))
            return Failure{"only what is there is offered", nameOf(info.source)};
    }
    for (const auto& info : lists.windows) {
        offered.push_back(info.source);
        const auto* const window = m_desktop.findWindow(info.source.identifier());
        if (!window && !contains(picked, info.source))
            return Failure{"only what is there is offered", nameOf(info.source)};
        if (window && window->processID == m_desktop.ownProcess())
            return Failure{"our own windows are not offered", nameOf(info.source)};
        if (window && window->title != info.title)
            return Failure{"a window has its title", info.title};
    }
    for (const auto& display : m_desktop.displays()) {
        if (!contains(offered, CaptureSource::display(display.displayID)))
            return Failure{"every display is offered", fmt::to_string(display.displayID)};
    }
    for (const auto& window : m_desktop.windows()) {
        if (window.processID != m_desktop.ownProcess() &&
            m_desktop.findApplication(window.processID) &&
            !contains(offered, CaptureSource::window(window.windowID)))
            return Failure{"every window is offered", fmt::to_string(window.windowID)};
    }
    for (const auto& source : m_program.controller().unavailableManualSources().get()) {
        if (!contains(picked, source))
            return Failure{"only picks are said to be unavailable", nameOf(source)};
    }
    return {};
}

/// Where the largest window of the application in front is; absent while it has none, or several
/// of that size, or the place is at an edge.
std::optional<CaptureSource> Checkers::displayOfFocus() const {
    constexpr double smallest = 100; // of a window that says where the user works
    const SimulatedWindow* largest = nullptr;
    bool isOnlyOne = false;
    const auto area = [](const auto& window) { return window.frame.width * window.frame.height; };
    for (const auto& window : m_desktop.windows()) {
        if (window.processID != m_desktop.activeApplication() || !window.isOnScreen ||
            window.frame.width <= smallest || window.frame.height <= smallest)
            continue;
        if (!largest || area(window) > area(*largest)) {
            largest = &window;
            isOnlyOne = true;
        } else if (area(window) == area(*largest)) {
            isOnlyOne = false;
        }
    }
    if (!largest || !isOnlyOne)
        return {};
    const auto place = m_desktop.flipped(largest->frame.center());
    for (const auto& display : m_desktop.displays()) {
        const Rect inside{display.frame.x + 1, display.frame.y + 1, display.frame.width - 2,
                          display.frame.height - 2};
        if (inside.contains(place))
            return CaptureSource::display(display.displayID);
    }
    return {};
}

std::optional<Failure> Checkers::checkFollowed() const {
    const auto& settings = m_program.settings();
    const auto active = m_program.controller().activeSource().get();
    std::optional<CaptureSource> wanted;
    if (settings.followMode.get() == FollowMode::mouse) {
        for (const auto& display : m_desktop.displays())
            if (display.frame.contains(m_desktop.pointer()))
                wanted = CaptureSource::display(display.displayID);
    } else if (settings.followMode.get() == FollowMode::focusedApp) {
        wanted = displayOfFocus();
    } else {
        const auto& picked = settings.manualSources.get();
        if (picked.size() == 1)
            wanted = picked.front();
        else if (active && std::ranges::find(picked, *active) == picked.end())
            return Failure{"by hand, only what was picked is shown", nameOf(active)};
        // Picks that are away stay on offer, and a start tries one other pick only: where two are
        // away, it may be another of these.
        const auto there = std::ranges::count_if(
            picked, [this](auto source) { return canBeCaptured(m_desktop, source); });
        if (!active && there > 0 && there + 2 > static_cast<std::ptrdiff_t>(picked.size()))
            return Failure{"by hand, one of the picks that are there is shown", ""};
    }
    if (wanted && canBeCaptured(m_desktop, *wanted) && active != wanted)
        return Failure{"the source that the follow mode asks for",
                       fmt::format("{} is shown, {} is wanted", nameOf(active), nameOf(wanted))};
    return {};
}

} // namespace kestrove::simulation
