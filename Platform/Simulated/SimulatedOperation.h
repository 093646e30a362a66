#pragma once

#include "Desktop/PlatformError.h"
#include "Platform/Simulated/SimulatedMainLoop.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>

namespace kestrove {

/// What becomes of one call of an operation.
class SimulatedOutcome {
public:
    [[nodiscard]] static SimulatedOutcome succeeds(Seconds delay = Seconds(0));
    [[nodiscard]] static SimulatedOutcome fails(PlatformError error, Seconds delay = Seconds(0));
    /// Never answers until it is released.
    [[nodiscard]] static SimulatedOutcome held();

    [[nodiscard]] bool isHeld() const { return m_isHeld; }
    [[nodiscard]] Seconds delay() const { return m_delay; }
    [[nodiscard]] const std::optional<PlatformError>& failure() const { return m_failure; }

private:
    SimulatedOutcome(Seconds delay, std::optional<PlatformError> failure, bool isHeld);

    Seconds m_delay;
    std::optional<PlatformError> m_failure;
    bool m_isHeld;
};

/// One operation of a simulated service: what its calls come to, and how often it was called.
///
/// An outcome of success means that nothing was made to fail; the operation still fails when the
/// desktop itself does not allow it (its display has gone, for instance). What the operation does
/// takes effect at the moment of the answer.
///
/// Thread: main.
class SimulatedOperation {
public:
    /// Told at the moment of the answer, with the failure that was made for it.
    using Answer = std::move_only_function<void(std::optional<PlatformError>)>;

    explicit SimulatedOperation(SimulatedMainLoop& loop)
        : m_loop(loop) {}
    SimulatedOperation(const SimulatedOperation&) = delete;
    SimulatedOperation& operator=(const SimulatedOperation&) = delete;
    ~SimulatedOperation() = default;

    /// Of every call from now on, but for those that `next` plans.
    void always(SimulatedOutcome outcome);
    /// Of one call more: the next one that has no plan yet.
    void next(SimulatedOutcome outcome);

    /// Answers every call that is held, in the order of the calls.
    void release(const std::optional<PlatformError>& failure = {});

    [[nodiscard]] int callCount() const { return m_callCount; }
    [[nodiscard]] std::size_t heldCount() const { return m_held.size(); }
    /// Calls that have not been answered, held or not.
    [[nodiscard]] std::size_t pendingCount() const { return m_held.size() + m_delayed.size(); }

    // For the adapters.
    void begin(Answer answer);
    /// Counts a call of an operation that answers at once, and gives its planned failure.
    [[nodiscard]] std::optional<PlatformError> answerAtOnce();

private:
    [[nodiscard]] SimulatedOutcome takeOutcome();
    void answerAfter(SimulatedOutcome outcome, Answer answer);

    struct Delayed {
        Answer answer;
        Timer timer;
    };

    SimulatedMainLoop& m_loop;
    SimulatedOutcome m_always = SimulatedOutcome::succeeds();
    std::deque<SimulatedOutcome> m_next;
    std::deque<Answer> m_held;
    std::map<std::uint64_t, Delayed> m_delayed;
    std::uint64_t m_nextDelayed = 0;
    int m_callCount = 0;
};

} // namespace kestrove
