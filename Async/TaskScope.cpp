#include "Async/TaskScope.h"

#include <utility>
#include <vector>

namespace kestrove {

struct TaskScope::State {
    std::vector<std::shared_ptr<TaskContext>> contexts;
};

TaskScope::TaskScope(MainLoop& loop)
    : m_loop(loop)
    , m_state(std::make_shared<State>()) {}

TaskScope::~TaskScope() {
    cancelAll();
}

void TaskScope::launch(Task<void> task) {
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
    m_loop.post([alive = std::weak_ptr(m_state), run = std::move(operation)]() mutable {
        if (alive.lock())
            run();
    });
}

void TaskScope::cancelAll() {
    // A fresh state first: what ends here may come back to launch something else.
    const auto ended = std::exchange(m_state, std::make_shared<State>());
    for (const auto& context : std::exchange(ended->contexts, {}))
        context->abandon();
}

bool TaskScope::isEmpty() const {
    return m_state->contexts.empty();
}

} // namespace kestrove
