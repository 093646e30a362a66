#pragma once

#include "Core/AppController/CaptureSessionState.h"
#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Simulation/Program.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kestrove::simulation {

/// A promise that was broken.
struct Failure {
    std::string rule;
    std::string detail;
};

/// Watches one run of the program and tells when it breaks a promise. Knows nothing of what is done
/// to the program, only of the world and of what the program says and shows.
class Checkers {
public:
    Checkers(SimulatedDesktop& desktop, Program& program);
    Checkers(const Checkers&) = delete;
    Checkers& operator=(const Checkers&) = delete;

    /// What holds at every moment.
    [[nodiscard]] std::optional<Failure> always();
    /// What holds when the program has done all that it can at this moment.
    [[nodiscard]] std::optional<Failure> whenIdle();
    /// What holds, besides, when the user has done something: dear to look at all the time.
    [[nodiscard]] std::optional<Failure> afterUse() const;
    /// What holds when the desktop has answered everything and time has passed.
    [[nodiscard]] std::optional<Failure> whenSettled() const;
    /// What holds, besides, when the user has started and has just moved the pointer.
    [[nodiscard]] std::optional<Failure> whileSharing() const;
    /// What holds, besides, when the user has stopped.
    [[nodiscard]] std::optional<Failure> afterStop() const;

private:
    // Told at the moment of a change, before anybody can see it.
    void stateChanges(CaptureSessionState to);
    void activeSourceChanges(const std::optional<CaptureSource>& source);
    void followInterruption(CaptureSessionState to);
    void shortcutFailuresChange(const ShortcutFailures& failures);
    void registeredActionsChange(const ShortcutActions& actions);
    void checkEndIsDue(CaptureSessionState to);
    [[nodiscard]] bool hasOwnStreamEnded() const;
    [[nodiscard]] bool isOwnStreamThere() const;
    void noteMeanwhile(const char* rule, std::string detail);

    // Output.cpp
    [[nodiscard]] std::optional<Failure> checkSeen() const;
    [[nodiscard]] std::optional<Failure> checkLayer();
    [[nodiscard]] std::optional<Failure> checkOutputFollowsState() const;
    [[nodiscard]] std::optional<Failure> checkMark() const;
    [[nodiscard]] std::optional<Failure> checkMarkIsInPlace() const;
    [[nodiscard]] std::optional<Failure> checkRequests();
    [[nodiscard]] std::optional<Failure> checkPictureIsOfNow() const;
    // Session.cpp
    [[nodiscard]] std::optional<Failure> checkTexts() const;
    [[nodiscard]] std::optional<Failure> checkSchedule() const;
    // Stored.cpp
    [[nodiscard]] std::optional<Failure> checkStored() const;
    [[nodiscard]] std::optional<Failure> checkHotKeys() const;
    [[nodiscard]] std::optional<Failure> checkHotKeysWork() const;
    // Sources.cpp
    [[nodiscard]] std::optional<Failure> checkLists() const;
    [[nodiscard]] std::optional<Failure> checkChosen();
    [[nodiscard]] std::optional<Failure> checkPicker() const;
    [[nodiscard]] std::optional<Failure> checkInterruptionIsOver() const;
    [[nodiscard]] std::optional<Failure> checkFollowed() const;
    [[nodiscard]] std::optional<CaptureSource> displayOfFocus() const;

    SimulatedDesktop& m_desktop;
    Program& m_program;
    std::optional<Failure> m_brokenMeanwhile;
    /// When the output was cleared last.
    Seconds m_clearedAt{0};
    std::size_t m_lookedAtChanges = 0;
    std::size_t m_lookedAtRecords = 0;
    /// At any moment since the last look.
    bool m_mayHaveCaptured = false;
    /// What the setting was since the session last came to rest: a change during a start or a
    /// switch counts from the next one on, also where the session is stopped meanwhile.
    std::set<std::int64_t> m_frameRates;
    /// Since the session began.
    bool m_hasLackedPermission = false;
    /// Of the capture service, at the last look.
    std::optional<CaptureSource> m_lastAskedFor;
    std::optional<CaptureSource> m_lastActive;
    /// What was shown, by the user's own choice that still stands, when its stream ended by itself.
    std::optional<CaptureSource> m_interrupted;
    /// A pick that stays on show as an automatic mode has no display to switch to.
    std::optional<CaptureSource> m_shownForWantOfADisplay;
    /// When the program last published what is there.
    int m_failedListings = 0;
    int m_editsAtFailure = 0;
    std::vector<Subscription> m_watching;
};

} // namespace kestrove::simulation
