#pragma once

#include "Async/MainLoop.h"
#include "Async/Task.h"

#include <memory>

namespace kestrove {

/// Lets tasks do something one at a time, in the order in which they asked.
///
/// Thread: main. A turn, and a task that waits for one, may outlive the `Turns`; the loop outlives
/// all.
class Turns {
    struct State;

public:
    /// The right to go on, owned: the next task's turn comes when it is destroyed, from the main
    /// loop.
    class Turn {
    public:
        explicit Turn(std::shared_ptr<State> state);
        Turn(Turn&&) noexcept = default;
        Turn& operator=(Turn&&) = delete;
        ~Turn();

    private:
        std::shared_ptr<State> m_state;
    };

    explicit Turns(MainLoop& loop);

    /// Goes on at once when nobody has the turn. A task that is dropped while it waits is left out.
    [[nodiscard]] Task<Turn> take();

private:
    static Task<Turn> wait(std::shared_ptr<State> state);

    std::shared_ptr<State> m_state;
};

} // namespace kestrove
