#include "Async/TaskScope.h"

#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

namespace kestrove {

struct TaskScope::State {
    std::vector<std::shared_ptr<TaskContext>> contexts;
    /// Counts the calls of `cancelAll`: what was posted before the last one is dropped. Read where
    /// `post` is called, which may be any thread.
    std::atomic<std::uint64_t> generation = 0;
    bool hasEnded = false;
};

TaskScope::TaskScope(MainLoop& loop)
    : m_loop(loop)
    , m_state(std::make_shared<State>()) {}

TaskScope::~TaskScope() {
    m_state->hasEnded = true;
    cancelAll();
}

void TaskScope::launch(Task<void> task) {
    // What ends with the scope may try to launch something else: that ends here.
    if (m_state->hasEnded)
        return;
    const auto frame = task.release();
    auto context = std::make_shared<TaskContext>(frame);
    frame.promise().context = context.get();
    m_state->contexts.push_back(context);
    m_loop.post([state = std::weak_ptr(m_state), started = std::weak_ptr(context)] {
        const auto running = started.lock();
        if (!running)
            return;
        running->start([state, finished = running.get()] {
            if (const auto scope = state.lock())
                std::erase_if(scope->contexts,
                              [&](const auto& each) { return each.get() == finished; });
        });
    });
}

void TaskScope::post(Operation operation) {
    m_loop.post([state = std::weak_ptr(m_state), generation = m_state->generation.load(),
                 run = std::move(operation)]() mutable {
        const auto scope = state.lock();
        if (scope && scope->generation == generation)
            run();
    });
}

void TaskScope::cancelAll() {
    // Kept: what ends here may come back to launch something else, or destroy the scope.
    const auto state = m_state;
    ++state->generation;
    for (const auto& context : std::exchange(state->contexts, {}))
        context->abandon();
}

bool TaskScope::isEmpty() const {
    return m_state->contexts.empty();
}

} // namespace kestrove
