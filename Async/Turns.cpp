#include "Async/Turns.h"

#include "Async/Completion.h"

#include <deque>
#include <utility>

namespace kestrove {

struct Turns::State {
    explicit State(MainLoop& mainLoop)
        : loop(mainLoop) {}
    MainLoop& loop;
    std::deque<Completion<Turn>> waiting;
    bool isTaken = false;
};

Turns::Turn::Turn(std::shared_ptr<State> state)
    : m_state(std::move(state)) {}

Turns::Turn::~Turn() {
    if (!m_state)
        return;
    if (m_state->waiting.empty()) {
        m_state->isTaken = false;
        return;
    }
    const auto next = std::move(m_state->waiting.front());
    m_state->waiting.pop_front();
    // If the task that waits has been dropped, the completion destroys the turn it is given, which
    // hands it on.
    next.complete(Turn(m_state));
}

Turns::Turns(MainLoop& loop)
    : m_state(std::make_shared<State>(loop)) {}

Task<Turns::Turn> Turns::take() {
    return wait(m_state);
}

Task<Turns::Turn> Turns::wait(std::shared_ptr<State> state) {
    if (!std::exchange(state->isTaken, true))
        co_return Turn(state);
    const Completion<Turn> granted(state->loop);
    state->waiting.push_back(granted);
    co_return co_await granted;
}

} // namespace kestrove
