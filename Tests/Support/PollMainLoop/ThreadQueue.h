#pragma once

#include "Async/SerialQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

namespace kestrove {

/// A serial queue with a thread of its own.
class ThreadQueue final : public SerialQueue {
public:
    explicit ThreadQueue(std::string label);
    ~ThreadQueue() override;

    const std::string& label() const override { return m_label; }
    void post(Operation operation) override;

private:
    void run();

    std::string m_label;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    /// Guarded by the mutex, both.
    std::deque<Operation> m_operations;
    bool m_isEnding = false;
    std::thread m_thread;
};

} // namespace kestrove
