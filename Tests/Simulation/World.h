#pragma once

#include "Platform/Simulated/SimulatedDesktop.h"
#include "Tests/Simulation/Checkers/Checkers.h"
#include "Tests/Simulation/Program.h"
#include "Tests/Simulation/Step.h"

#include <memory>
#include <optional>
#include <vector>

namespace kestrove::simulation {

/// Which one a step's number means.
template <class List>
const auto& pick(const List& list, std::uint32_t number) {
    return list[number % list.size()];
}

/// A desktop with the program on it, and what can happen there. After everything that happens the
/// checkers look at it.
class World {
public:
    World();
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    void perform(const Step& step);
    /// All troubles end, the desktop answers again, and the user goes on working: from then on
    /// everything must come right. Ends with a stop.
    void calmDown();

    [[nodiscard]] const std::optional<Failure>& failure() const { return m_failure; }

private:
    void apply(const Step& step);
    void applyToDisplays(const Step& step);
    void applyToApplications(const Step& step);
    void applyToWindows(const Step& step);
    void applyToSession(const Step& step);
    void applyToServices(const Step& step);
    void applyByHand(const Step& step);
    void applyToMenu(const Step& step);
    void pickInPicker(const Step& step);
    void applyToHotKeys(const Step& step);
    /// The user records shortcuts anew when nothing is in the way any more.
    void useHotKeysInPeace();
    void planOperation(const Step& step);
    void toggleSource(const Step& step);
    void restart();
    void pause(const Step& step);

    void run(Seconds duration);
    void runOperations(std::uint32_t count);
    void runUntilIdle();
    void check();
    void note(std::optional<Failure> failure);

    struct PlannedOperation {
        SimulatedOperation* operation;
        const char* name;
        /// Nothing can come between the call and the answer.
        bool answersAtOnce = false;
        const char* plan = "";
        int callsBeforePlan = 0;
    };
    [[nodiscard]] std::vector<PlannedOperation> makeOperations();
    /// Counts the calls that met the plan that ends now.
    static void countCalls(PlannedOperation& operation);
    static void plan(PlannedOperation& operation, const char* name, SimulatedOutcome outcome);

    [[nodiscard]] std::vector<WindowID> foreignWindows() const;
    [[nodiscard]] Point somePointOnADisplay(const Step& step) const;

    SimulatedMainLoop m_loop;
    SimulatedDesktop m_desktop{m_loop};
    std::vector<PlannedOperation> m_operations = makeOperations();
    std::vector<ProcessID> m_applications;
    /// Windows that have been closed, for one to come back under its number.
    std::vector<SimulatedWindow> m_closedWindows;
    DisplayID m_nextDisplay = 1;
    std::unique_ptr<Program> m_program;
    std::unique_ptr<Checkers> m_checkers;
    std::optional<Failure> m_failure;
};

} // namespace kestrove::simulation
