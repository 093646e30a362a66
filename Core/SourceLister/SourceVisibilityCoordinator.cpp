#include "Core/SourceLister/SourceVisibilityCoordinator.h"

#include <algorithm>
#include <utility>

namespace kestrove {

namespace {

/// Says that a refresh is running as long as it lives: also when the task is dropped halfway.
class RefreshInProgress {
public:
    explicit RefreshInProgress(bool& isRefreshing)
        : m_isRefreshing(isRefreshing) {
        m_isRefreshing = true;
    }
    RefreshInProgress(const RefreshInProgress&) = delete;
    RefreshInProgress& operator=(const RefreshInProgress&) = delete;
    ~RefreshInProgress() { m_isRefreshing = false; }

private:
    bool& m_isRefreshing;
};

bool contains(const std::vector<CaptureSource>& sources, CaptureSource source) {
    return std::ranges::find(sources, source) != sources.end();
}

} // namespace

SourceVisibilityCoordinator::SourceVisibilityCoordinator(
    SourceSnapshotListing& sourceLister, WindowExistenceChecking& windowExistenceChecker,
    const SessionLockStateProviding& sessionLockState, SourceSessionControlling* sessionController)
    : m_sourceLister(sourceLister)
    , m_windowExistenceChecker(windowExistenceChecker)
    , m_sessionLockState(sessionLockState)
    , m_sessionController(sessionController) {}

Task<SourceVisibilityCoordinator::RefreshResult>
SourceVisibilityCoordinator::refresh(std::vector<ManualWindowSelection> selections,
                                     std::vector<CaptureSource> selectedSources,
                                     WindowIDSet excludingWindowIDs) {
    if (m_isRefreshing)
        co_return std::optional<Refresh>();
    const RefreshInProgress inProgress(m_isRefreshing);
    auto snapshot = co_await m_sourceLister.fetch(std::move(excludingWindowIDs));
    if (!snapshot)
        co_return std::unexpected(std::move(snapshot.error()));

    Refresh refresh{std::move(snapshot->lists),
                    std::move(snapshot->existingSources),
                    std::move(snapshot->onScreenSources),
                    {},
                    {}};
    const auto existences = classify(selections);
    for (const auto& [window, existence] : existences) {
        if (existence == WindowExistence::terminated)
            refresh.terminatedSources.insert(CaptureSource::window(window));
        else if (existence != WindowExistence::exists)
            refresh.unavailableSources.insert(CaptureSource::window(window));
    }
    if (!refresh.terminatedSources.empty() && m_sessionController != nullptr)
        co_await m_sessionController->safelyStopIfActiveSourceTerminated(refresh.terminatedSources);

    // Read only now: the stop may have given up what was interrupted, or interrupted something.
    const auto interrupted = m_interruptedSource;
    if (interrupted && refresh.terminatedSources.contains(*interrupted)) {
        giveUpInterruptedSource();
    } else if (interrupted && canBeSeen(*interrupted, refresh.onScreenSources, existences) &&
               contains(selectedSources, *interrupted) && m_sessionController != nullptr) {
        if (co_await m_sessionController->resumeInterruptedSource(*interrupted))
            m_interruptedSource.reset();
    }
    co_return std::move(refresh);
}

void SourceVisibilityCoordinator::selectedSourcesDidChange(
    const std::vector<CaptureSource>& selected) {
    if (m_interruptedSource && !contains(selected, *m_interruptedSource))
        giveUpInterruptedSource();
}

SourceVisibilityCoordinator::Existences
SourceVisibilityCoordinator::classify(const std::vector<ManualWindowSelection>& selections) const {
    Existences existences;
    for (const auto& selection : selections) {
        const auto lockState = m_sessionLockState.state();
        existences[selection.windowID] = m_windowExistenceChecker.existence(selection, lockState);
    }
    return existences;
}

bool SourceVisibilityCoordinator::canBeSeen(CaptureSource source,
                                            const CaptureSourceSet& onScreenSources,
                                            const Existences& existences) {
    if (!onScreenSources.contains(source))
        return false;
    if (source.isDisplay())
        return true;
    // A window number alone proves nothing: it may be in use again. Its owner was checked only if
    // it was among the selections.
    const auto found = existences.find(source.identifier());
    return found != existences.end() && found->second == WindowExistence::exists;
}

void SourceVisibilityCoordinator::giveUpInterruptedSource() {
    m_interruptedSource.reset();
    if (m_sessionController != nullptr)
        m_sessionController->cancelSourceRefresh();
}

} // namespace kestrove
