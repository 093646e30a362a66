#include "Platform/Simulated/SimulatedOperation.h"

#include "Platform/Simulated/Misuse.h"

#include <utility>

namespace kestrove {

SimulatedOutcome::SimulatedOutcome(Seconds delay, std::optional<PlatformError> failure, bool isHeld)
    : m_delay(delay)
    , m_failure(std::move(failure))
    , m_isHeld(isHeld) {}

SimulatedOutcome SimulatedOutcome::succeeds(Seconds delay) {
    return {delay, std::nullopt, false};
}

SimulatedOutcome SimulatedOutcome::fails(PlatformError error, Seconds delay) {
    return {delay, std::move(error), false};
}

SimulatedOutcome SimulatedOutcome::held() {
    return {Seconds(0), std::nullopt, true};
}

void SimulatedOperation::always(SimulatedOutcome outcome) {
    m_loop.requireMainThread("planning an outcome");
    m_always = std::move(outcome);
}

void SimulatedOperation::next(SimulatedOutcome outcome) {
    m_loop.requireMainThread("planning an outcome");
    m_next.push_back(std::move(outcome));
}

void SimulatedOperation::release(const std::optional<PlatformError>& failure) {
    m_loop.requireMainThread("releasing a held call");
    if (m_held.empty())
        abortOnMisuse("releasing an operation of which no call is held");
    for (auto& answer : std::exchange(m_held, {}))
        answer(failure);
}

void SimulatedOperation::begin(Answer answer) {
    auto outcome = takeOutcome();
    if (outcome.isHeld())
        m_held.push_back(std::move(answer));
    else
        answerAfter(std::move(outcome), std::move(answer));
}

std::optional<PlatformError> SimulatedOperation::answerAtOnce() {
    const auto outcome = takeOutcome();
    if (outcome.isHeld() || outcome.delay() > Seconds(0))
        abortOnMisuse("a delay planned for an operation that answers at once");
    return outcome.failure();
}

SimulatedOutcome SimulatedOperation::takeOutcome() {
    ++m_callCount;
    if (m_next.empty())
        return m_always;
    auto outcome = std::move(m_next.front());
    m_next.pop_front();
    return outcome;
}

void SimulatedOperation::answerAfter(SimulatedOutcome outcome, Answer answer) {
    const auto key = m_nextDelayed++;
    auto& delayed = m_delayed[key];
    delayed.answer = std::move(answer);
    delayed.timer = m_loop.runAfter(outcome.delay(), [this, key, failure = outcome.failure()] {
        auto due = m_delayed.extract(key);
        due.mapped().answer(failure);
    });
}

} // namespace kestrove
