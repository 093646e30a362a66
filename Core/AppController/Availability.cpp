#include "Core/AppController/AppController.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace kestrove {

std::vector<CaptureSourceInfo>
AppController::lists(const std::vector<CaptureSourceInfo>& from, const CaptureSourceSet& retaining,
                     const std::vector<CaptureSourceInfo>& mergingPrevious) {
    CaptureSourceSet listed;
    for (const auto& info : from)
        listed.insert(info.source);
    auto merged = from;
    std::ranges::copy_if(mergingPrevious, std::back_inserter(merged), [&](const auto& info) {
        return retaining.contains(info.source) && !listed.contains(info.source);
    });
    return merged;
}

SourceLister::Lists AppController::lists(const SourceLister::Lists& from,
                                         const CaptureSourceSet& retaining) const {
    const auto& previous = m_availableSources.get();
    return {.displays = lists(from.displays, retaining, previous.displays),
            .windows = lists(from.windows, retaining, previous.windows)};
}

SourceVisibilityCoordinator& AppController::sourceVisibilityCoordinator() {
    if (!m_sourceVisibilityCoordinator)
        m_sourceVisibilityCoordinator.emplace(m_with.sourceLister, m_with.windowExistenceChecker,
                                              m_with.sessionLockState, this);
    return *m_sourceVisibilityCoordinator;
}

void AppController::scheduleSourceRefresh() {
    m_tasks.launch(refreshAvailableSources());
}

void AppController::reportOwnerlessPicks() {
    CaptureSourceSet ownerless;
    const auto& selections = m_with.settings.manualWindowSelections();
    for (const auto& source : m_with.settings.manualSources.get()) {
        if (source.isWindow() && !selections.contains(source.identifier()))
            ownerless.insert(source);
    }
    // Refreshes come every few seconds: one line for each such pick, not for each refresh.
    for (const auto& source : ownerless) {
        if (!m_ownerlessPicks.contains(source))
            m_with.diagnosticOutput.writeLine(
                "[kestrove] skipped manual window selection without owner identity");
    }
    m_ownerlessPicks = std::move(ownerless);
}

Task<void> AppController::refreshAvailableSources() {
    reportOwnerlessPicks();
    const auto looksAt = m_with.settings.manualWindowSelections();
    std::vector<ManualWindowSelection> selections;
    for (const auto& [window, selection] : looksAt)
        selections.push_back(selection);
    auto sources = m_with.settings.manualSources.get();
    auto ownWindows = selfCaptureWindowIDs();
    const SourceVisibilityCoordinator::RefreshResult result =
        co_await sourceVisibilityCoordinator().refresh(std::move(selections), std::move(sources),
                                                       std::move(ownWindows));
    if (!result)
        co_await listingDidFail(result.error());
    else if (*result)
        adopt(**result, looksAt);
}

void AppController::adopt(const SourceVisibilityCoordinator::Refresh& refresh,
                          const ManualWindowSelections& lookedAt) {
    const auto previousDisplayIDs = std::exchange(m_latestAvailableDisplayIDs, {});
    for (const auto& display : refresh.lists.displays)
        m_latestAvailableDisplayIDs.push_back(display.source.identifier());
    m_unavailableManualSources.set(refresh.unavailableSources);
    const auto& picked = m_with.settings.manualSources.get();
    m_availableSources.set(lists(refresh.lists, CaptureSourceSet(picked.begin(), picked.end())));
    auto terminated = refresh.terminatedSources;
    // A window that was picked meanwhile is another one, even under the number of one that has
    // gone.
    std::erase_if(terminated, [&](CaptureSource source) {
        const auto& picks = m_with.settings.manualWindowSelections();
        const auto pick = picks.find(source.identifier());
        return pick != picks.end() && pick->second != lookedAt.at(source.identifier());
    });
    pruneTerminatedManualSources(terminated);
    if (m_latestAvailableDisplayIDs != previousDisplayIDs)
        displaysDidChange();
}

/// The tracker tells another display only once: what it told while the display was not known yet,
/// or while none was, is done now.
void AppController::displaysDidChange() {
    if (isSessionActive() && isAutoFollow(m_followMode) && !m_isHandlingSourceFailure &&
        !m_latestAvailableDisplayIDs.empty())
        follow(autoDisplaySource(m_with.displayTracker.currentDisplay().get()));
}

Task<void> AppController::listingDidFail(PlatformError error) {
    m_latestAvailableDisplayIDs.clear();
    const auto permission = m_with.permissionAccess.current();
    if (permission != ScreenRecordingPermission::granted && isSessionActive())
        co_await stopForPermissionLoss(permission);
    else
        logError("failed to list sources", error);
}

WindowIDSet AppController::selfCaptureWindowIDs() const {
    WindowIDSet windows;
    const auto overlayWindow =
        m_with.activeOverlay ? m_with.activeOverlay->windowID() : std::nullopt;
    for (const auto window : {m_with.outputWindow.windowID(), overlayWindow}) {
        if (window && *window >= 1)
            windows.insert(*window);
    }
    return windows;
}

void AppController::pruneTerminatedManualSources(const CaptureSourceSet& terminated) {
    if (terminated.empty())
        return;
    m_with.diagnosticOutput.writeLine(
        fmt::format("[kestrove] pruned {} terminated manual source(s)", terminated.size()));
    m_with.settings.removeManualSources({terminated.begin(), terminated.end()});
}

} // namespace kestrove
