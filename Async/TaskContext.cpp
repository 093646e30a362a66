#include "Async/TaskContext.h"

#include <utility>

namespace kestrove {

TaskContext::~TaskContext() {
    destroyRoot();
}

void TaskContext::start(std::move_only_function<void()> finished) {
    m_finished = std::move(finished);
    resume(m_root);
}

void TaskContext::resume(std::coroutine_handle<> frame) {
    const auto self = shared_from_this();
    m_isRunning = true;
    frame.resume();
    m_isRunning = false;
    if (m_isAbandoned) {
        destroyRoot();
        return;
    }
    if (!m_root.done())
        return;
    destroyRoot();
    if (auto finished = std::exchange(m_finished, nullptr))
        finished();
}

void TaskContext::abandon() {
    const auto self = shared_from_this();
    m_isAbandoned = true;
    m_finished = nullptr;
    if (!m_isRunning)
        destroyRoot();
}

void TaskContext::destroyRoot() {
    if (const auto root = std::exchange(m_root, nullptr))
        root.destroy();
}

} // namespace kestrove
