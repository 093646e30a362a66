#include "Tests/Support/PollMainLoop/ThreadQueue.h"

#include <utility>

namespace kestrove {

ThreadQueue::ThreadQueue(std::string label)
    : m_label(std::move(label))
    , m_thread([this] { run(); }) {}

ThreadQueue::~ThreadQueue() {
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

void ThreadQueue::post(Operation operation) {
    {
        const std::lock_guard lock(m_mutex);
        m_operations.push_back(std::move(operation));
    }
    m_changed.notify_one();
}

void ThreadQueue::run() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_isEnding || !m_operations.empty(); });
        if (m_isEnding)
            return;
        auto operation = std::move(m_operations.front());
        m_operations.pop_front();
        lock.unlock();
        operation();
        operation = nullptr;
        lock.lock();
    }
}

} // namespace kestrove
