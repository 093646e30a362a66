#pragma once

#include "Core/AppController/CaptureSessionState.h"
#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Simulation/Program.h"

#include <optional>
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
    [[nodiscard]] std::optional<Failure> whenIdle() const;
    /// What holds when the desktop has answered everything and time has passed.
    [[nodiscard]] std::optional<Failure> whenSettled() const;
    /// What holds, besides, when the user has started and has just moved the pointer.
    [[nodiscard]] std::optional<Failure> whileSharing() const;
    /// What holds, besides, when the user has stopped.
    [[nodiscard]] std::optional<Failure> afterStop() const;

private:
    void stateChanges(CaptureSessionState to);
    [[nodiscard]] std::optional<Failure> checkSeen() const;
    [[nodiscard]] std::optional<Failure> checkSchedule() const;
    [[nodiscard]] std::optional<Failure> checkStored() const;
    [[nodiscard]] std::optional<Failure> checkPictureIsOfNow() const;
    [[nodiscard]] std::optional<Failure> checkFollowed() const;

    SimulatedDesktop& m_desktop;
    Program& m_program;
    std::optional<Failure> m_brokenMeanwhile;
    /// When the output was cleared last.
    Seconds m_clearedAt{0};
    std::vector<Subscription> m_watching;
};

} // namespace kestrove::simulation
