#include "Core/AppController/AppController.h"

#include <algorithm>

namespace kestrove {

bool AppController::isManualSource(CaptureSource source) const {
    const auto& picked = m_with.settings.manualSources.get();
    return std::ranges::find(picked, source) != picked.end();
}

void AppController::discardManualWindowsOfPreviousProcess() {
    auto& settings = m_with.settings;
    const bool hasWindows =
        std::ranges::any_of(settings.manualSources.get(), &CaptureSource::isWindow) ||
        !settings.manualWindowSelections().empty();
    settings.discardPersistedManualWindowsForNewProcess();
    m_needsDiscardedManualWindowRecovery =
        hasWindows && m_followMode == FollowMode::manual && settings.manualSources.get().empty();
}

void AppController::recoverManualModeAfterWindowDiscardIfNeeded() {
    if (!m_needsDiscardedManualWindowRecovery)
        return;
    if (m_latestAvailableDisplayIDs.empty()) {
        logSourceResolution("discardedManualWindowsNoDisplay");
        return;
    }
    m_needsDiscardedManualWindowRecovery = false;
    logSourceResolution("discardedManualWindows");
    m_with.settings.followMode.set(FollowMode::mouse);
}

void AppController::toggleSource(CaptureSource source,
                                 std::optional<WindowOwnerIdentity> windowOwner) {
    auto& settings = m_with.settings;
    std::optional<ManualWindowSelection> selection;
    if (source.isWindow()) {
        const auto& stored = settings.manualWindowSelections();
        const auto known = stored.find(source.identifier());
        if (windowOwner)
            selection = ManualWindowSelection{source.identifier(), *windowOwner};
        else if (known != stored.end())
            selection = known->second;
        // Without its owner, the window could not be told from a later one with its number.
        if (!selection && !isManualSource(source))
            return;
    }
    if (m_followMode != FollowMode::manual) {
        // A click while following automatically begins a selection of this source alone: the user
        // does not see what was picked before.
        settings.followMode.set(FollowMode::manual);
        settings.manualSources.set({});
    }
    settings.toggleManualSource(source, selection);
}

} // namespace kestrove
