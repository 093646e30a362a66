#pragma once

#include "Async/Published.h"
#include "Async/TaskScope.h"
#include "Core/AppController/AppControllerCollaborators.h"
#include "Core/AppController/CaptureSessionState.h"
#include "Core/AppController/ShortcutSettingsCoordinator.h"
#include "Core/SourceLister/SourceVisibilityCoordinator.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace kestrove {

/// Owns the one capture session: starts and stops it, moves it from source to source as the user
/// and the follow mode say, waits while there is no source, stops itself safely when a source, the
/// stream or the permission fails, and keeps the lists of what can be shared.
///
/// Everything that suspends runs in tasks, which interleave at their awaits only. Two numbers keep
/// them apart. Each session has one: what is left of an ended session does not touch the next one.
/// Each switch, wait and safe stop has one: the latest of them decides what the output shows,
/// however late the earlier ones come back from the engine.
///
/// Failures never leave the controller: they become a session state.
///
/// Thread: main. Lifetime: the collaborators outlive it. It may be destroyed at any await; it then
/// stops following and refreshing. It must not be destroyed from inside a subscriber of its fields.
class AppController final : public SourceSessionControlling {
public:
    explicit AppController(AppControllerCollaborators collaborators);
    AppController(const AppController&) = delete;
    AppController& operator=(const AppController&) = delete;
    ~AppController() override;

    // What views show. Subscribers only look: they act on the controller from the main loop.

    [[nodiscard]] const Published<CaptureSessionState>& sessionState() const {
        return m_sessionState;
    }
    /// The permission as last read.
    [[nodiscard]] const Published<ScreenRecordingPermission>& permissionStatus() const {
        return m_permissionStatus;
    }
    /// What can be shared, as last listed, and the user's picks that the listing missed.
    [[nodiscard]] const Published<SourceLister::Lists>& availableSources() const {
        return m_availableSources;
    }
    /// Picked windows that the last refresh could not confirm.
    [[nodiscard]] const Published<CaptureSourceSet>& unavailableManualSources() const {
        return m_unavailableManualSources;
    }
    /// The source whose frames are in the output now.
    [[nodiscard]] const Published<std::optional<CaptureSource>>& activeSource() const {
        return m_activeSource;
    }
    /// What the user should do about the session's state.
    [[nodiscard]] std::optional<std::string_view> recoveryGuidance() const;

    // The session.

    /// Begins sharing, unless it is on or on its way to or from it. Asks for the permission, which
    /// may run a dialog of the desktop or of ours.
    void start();
    /// Ends sharing, unless it is off. The engine empties the output; what the window then says is
    /// the application's.
    void stop();
    /// While the session is stopped, shows a missing permission without waiting for a start.
    void refreshIdlePermissionState();

    // Sources.

    /// Lists the desktop's sources anew. Does nothing while another refresh runs.
    [[nodiscard]] Task<void> refreshAvailableSources();
    /// The same, as a task of the controller's own.
    void scheduleSourceRefresh();
    /// Our own windows, which are never captured nor offered: the output would show itself.
    [[nodiscard]] WindowIDSet selfCaptureWindowIDs() const;
    /// A source row or tile was clicked. `windowOwner` is the row's; a window without one cannot be
    /// picked.
    void toggleSource(CaptureSource source, std::optional<WindowOwnerIdentity> windowOwner);
    /// Follows a new manual selection.
    void applyManualSources(const std::vector<CaptureSource>& sources);

    /// `from` merged with the lists as they are: a source in `retaining` stays listed, after the
    /// others, while the enumeration misses it.
    [[nodiscard]] SourceLister::Lists lists(const SourceLister::Lists& from,
                                            const CaptureSourceSet& retaining) const;
    /// The rule for one list. A retained entry keeps its title and subtitle of `mergingPrevious`.
    [[nodiscard]] static std::vector<CaptureSourceInfo>
    lists(const std::vector<CaptureSourceInfo>& from, const CaptureSourceSet& retaining,
          const std::vector<CaptureSourceInfo>& mergingPrevious);

    // Global shortcuts.

    /// Opens the picker with previews, where there is one.
    void showSourcePicker();
    /// What each global shortcut does. The handlers live no longer than the controller.
    [[nodiscard]] ShortcutHandlers globalShortcutHandlers();

    // SourceSessionControlling: what the source visibility coordinator has the session do.

    void safelyStopAfterStreamInterruption(CaptureSource source) override;
    [[nodiscard]] Task<void>
    safelyStopIfActiveSourceTerminated(CaptureSourceSet terminated) override;
    [[nodiscard]] Task<bool> resumeInterruptedSource(CaptureSource source) override;
    void cancelSourceRefresh() override;

private:
    using SessionNumber = std::uint64_t;
    enum class Fallback : std::uint8_t { allowed, forbidden };

    // AppController.cpp: construction and observations.
    void observeSettings();
    void observeFollowing();

    // Lifecycle.cpp: beginning and ending a session.
    [[nodiscard]] bool isSessionActive() const { return m_sessionState.get().isActive(); }
    [[nodiscard]] bool isActive(SessionNumber session) const {
        return session == m_sessionNumber && isSessionActive();
    }
    [[nodiscard]] bool isOnOrStopping() const {
        return isSessionActive() || m_sessionState.get() == CaptureSessionState::stopping();
    }
    void beginSession();
    [[nodiscard]] Task<void> runStart(SessionNumber session);
    [[nodiscard]] Task<void> runStop(SessionNumber session);
    void presentSafeOutput();
    [[nodiscard]] Task<void> stopForRecovery(CaptureRecoveryReason reason);
    [[nodiscard]] Task<void> stopForPermissionLoss(ScreenRecordingPermission permission);
    [[nodiscard]] Task<void> stopSafely(CaptureSessionState end);

    // Switching.cpp: moving the stream.
    std::uint64_t beginOutputRequest();
    [[nodiscard]] bool isCurrent(std::uint64_t outputRequest) const {
        return outputRequest == m_outputRequest && isSessionActive();
    }
    [[nodiscard]] Task<void> switchTo(CaptureSource source, Fallback fallback);
    [[nodiscard]] Task<void> waitForSource();
    [[nodiscard]] Task<void> settleOvertakenStream();
    [[nodiscard]] Task<void> restoreRunningStream();
    void presentSource(CaptureSource source, Size pixelSize);

    // Recovery.cpp: failed switches and dead streams.
    void captureStreamDidStop();
    [[nodiscard]] bool hasTerminated(CaptureSource source) const;
    [[nodiscard]] Task<void>
    recoverFromSwitchFailure(CaptureError error, CaptureSource failedSource, Fallback fallback);
    [[nodiscard]] std::optional<CaptureSource> fallbackSource(CaptureSource failedSource) const;

    // Following.cpp: which source, as the follow mode says.
    [[nodiscard]] std::optional<CaptureSource> initialSource() const;
    [[nodiscard]] std::optional<CaptureSource>
    autoDisplaySource(std::optional<DisplayID> preferred) const;
    [[nodiscard]] bool isChoosable(CaptureSource source) const;
    void beginFollowing(std::optional<CaptureSource> failedSource = std::nullopt);
    void retryFailedSource();
    void startSourceTracking();
    void stopSourceTracking();
    void handleFollowModeChange(FollowMode mode);
    void follow(std::optional<CaptureSource> source);
    /// Whether the session shows this source, or has none as asked for.
    [[nodiscard]] bool hasSettledOn(std::optional<CaptureSource> source) const;
    [[nodiscard]] Task<void> runFollow(std::uint64_t followRequest,
                                       std::optional<CaptureSource> source);

    // Availability.cpp: the lists.
    [[nodiscard]] SourceVisibilityCoordinator& sourceVisibilityCoordinator();
    /// A picked window without a known owner is not checked: nobody could tell it from a later
    /// window with its number.
    void reportOwnerlessPicks();
    /// `lookedAt`: the picked windows that the refresh has looked at.
    void adopt(const SourceVisibilityCoordinator::Refresh& refresh,
               const ManualWindowSelections& lookedAt);
    void displaysDidChange();
    [[nodiscard]] Task<void> listingDidFail(PlatformError error);
    void pruneTerminatedManualSources(const CaptureSourceSet& terminated);

    // ManualSelection.cpp: picks, and those of the previous run.
    [[nodiscard]] bool isManualSource(CaptureSource source) const;
    void discardManualWindowsOfPreviousProcess();
    void recoverManualModeAfterWindowDiscardIfNeeded();

    // Shortcuts.cpp: what the global shortcuts do.
    void startOrStop();
    void showOutputWindow();
    void toggleHiddenMode();

    // Log.cpp
    void logSourceResolution(std::string_view reason) const;
    void logError(std::string_view what, const CaptureError& error) const;

    AppControllerCollaborators m_with;

    Published<CaptureSessionState> m_sessionState{CaptureSessionState::stopped()};
    Published<ScreenRecordingPermission> m_permissionStatus{
        ScreenRecordingPermission::notDetermined};
    Published<SourceLister::Lists> m_availableSources{{}};
    Published<CaptureSourceSet> m_unavailableManualSources{{}};
    Published<std::optional<CaptureSource>> m_activeSource{std::nullopt};

    SessionNumber m_sessionNumber = 0;
    /// The latest switch, wait or safe stop, and whether it has done what it was for.
    std::uint64_t m_outputRequest = 0;
    bool m_isOutputSettled = false;
    /// The latest wish of the follow mode that was launched.
    std::uint64_t m_followRequest = 0;
    /// The mode as last announced: inside its announcement the settings still hold the old one.
    FollowMode m_followMode;
    /// Whether this session's tracking and refreshing have begun.
    bool m_isFollowing = false;
    bool m_isContentShown = false;
    /// A start-up refresh or a recovery is in progress, and will choose the source itself.
    bool m_isHandlingSourceFailure = false;
    bool m_needsDiscardedManualWindowRecovery = false;
    /// Not to be tried again only because tracking begins anew.
    std::optional<CaptureSource> m_sourceNotToRetry;
    /// What the last recovery was from, until it is shown again.
    std::optional<CaptureSource> m_lastFailedSource;
    /// Picked windows that were reported for want of a known owner.
    CaptureSourceSet m_ownerlessPicks;
    /// The displays of the last successful enumeration, in its order.
    std::vector<DisplayID> m_latestAvailableDisplayIDs;

    /// Made on first use; reach it by `sourceVisibilityCoordinator`.
    std::optional<SourceVisibilityCoordinator> m_sourceVisibilityCoordinator;
    /// Absent on a desktop without hot keys.
    std::optional<ShortcutSettingsCoordinator> m_shortcutSettingsCoordinator;
    std::vector<Subscription> m_observations;
    TaskScope m_tasks;
};

} // namespace kestrove
