#include "Tests/Support/PollMainLoop/ThreadSerialQueue.h"

#include <cstdio>
#include <cstdlib>
#include <pthread.h>
#include <utility>

namespace kestrove {

namespace {

constexpr std::size_t longestThreadName = 15;

std::string threadName(const std::string& label) {
    return label.size() <= longestThreadName ? label
                                             : label.substr(label.size() - longestThreadName);
}

} // namespace

ThreadSerialQueue::ThreadSerialQueue(std::string label)
    : m_label(std::move(label))
    , m_thread([this] { run(); }) {
    pthread_setname_np(m_thread.native_handle(), threadName(m_label).c_str());
}

ThreadSerialQueue::~ThreadSerialQueue() {
    if (std::this_thread::get_id() == m_thread.get_id()) {
        std::fprintf(stderr, "kestrove: the queue %s ends in its own operation\n", m_label.c_str());
        std::abort();
    }
    dropQueued();
    m_changed.notify_one();
    m_thread.join();
}

void ThreadSerialQueue::dropQueued() {
    std::deque<Operation> dropped;
    const std::lock_guard lock(m_mutex);
    m_isEnding = true;
    // Ends after the lock: what the operations own may post again.
    dropped.swap(m_operations);
}

void ThreadSerialQueue::post(Operation operation) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_isEnding)
            return;
        m_operations.push_back(std::move(operation));
    }
    m_changed.notify_one();
}

void ThreadSerialQueue::run() {
    while (true) {
        Operation operation;
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_isEnding || !m_operations.empty(); });
            if (m_isEnding)
                return;
            operation = std::move(m_operations.front());
            m_operations.pop_front();
        }
        operation();
    }
}

} // namespace kestrove
