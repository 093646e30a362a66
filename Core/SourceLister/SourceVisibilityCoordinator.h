#pragma once

#include "Async/Task.h"
#include "Core/Collaborators/SourceDiscovery.h"

#include <expected>
#include <map>
#include <optional>
#include <vector>

namespace kestrove {

/// Notices what becomes of the sources that the user picked. Each refresh takes a fresh snapshot of
/// the desktop, classifies the picked windows, has the session stop when its source is gone for
/// good, and has it resume an interrupted source that can be seen again.
///
/// Thread: main. Lifetime: the first three collaborators outlive it. The session is not owned: it
/// may end earlier and then says so with `forgetSessionController`.
class SourceVisibilityCoordinator {
public:
    struct Refresh {
        SourceLister::Lists lists;
        CaptureSourceSet existingSources;
        CaptureSourceSet onScreenSources;
        /// Picked windows that are gone for good.
        CaptureSourceSet terminatedSources;
        /// Picked windows that may come back.
        CaptureSourceSet unavailableSources;
    };
    /// Absent when another refresh is running; an error when the snapshot could not be taken.
    using RefreshResult = std::expected<std::optional<Refresh>, PlatformError>;

    /// `sessionController` may be null.
    SourceVisibilityCoordinator(SourceSnapshotListing& sourceLister,
                                WindowExistenceChecking& windowExistenceChecker,
                                const SessionLockStateProviding& sessionLockState,
                                SourceSessionControlling* sessionController);
    SourceVisibilityCoordinator(const SourceVisibilityCoordinator&) = delete;
    SourceVisibilityCoordinator& operator=(const SourceVisibilityCoordinator&) = delete;
    ~SourceVisibilityCoordinator() = default;

    /// The task must be dropped before the coordinator goes. A refresh that was dropped counts as
    /// ended.
    [[nodiscard]] Task<RefreshResult> refresh(std::vector<ManualWindowSelection> selections,
                                              std::vector<CaptureSource> selectedSources,
                                              WindowIDSet excludingWindowIDs);

    /// The user picked otherwise: an interrupted source that is picked no more is not waited for.
    void selectedSourcesDidChange(const std::vector<CaptureSource>& selected);

    /// The source whose capture was interrupted and may be resumed.
    [[nodiscard]] std::optional<CaptureSource> interruptedSource() const {
        return m_interruptedSource;
    }
    void setInterruptedSource(std::optional<CaptureSource> source) { m_interruptedSource = source; }

    [[nodiscard]] bool isRefreshing() const { return m_isRefreshing; }

    void forgetSessionController() { m_sessionController = nullptr; }

private:
    using Existences = std::map<WindowID, WindowExistence>;

    [[nodiscard]] Existences classify(const std::vector<ManualWindowSelection>& selections) const;
    [[nodiscard]] static bool canBeSeen(CaptureSource source,
                                        const CaptureSourceSet& onScreenSources,
                                        const Existences& existences);
    /// What is interrupted is waited for no more, and so neither is the refresh.
    void giveUpInterruptedSource();

    SourceSnapshotListing& m_sourceLister;
    WindowExistenceChecking& m_windowExistenceChecker;
    const SessionLockStateProviding& m_sessionLockState;
    SourceSessionControlling* m_sessionController;
    bool m_isRefreshing = false;
    std::optional<CaptureSource> m_interruptedSource;
};

} // namespace kestrove
