#pragma once

#include "Async/SerialQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

namespace kestrove {

/// A serial queue with a thread of its own, which sleeps while nothing is queued.
///
/// The thread carries the last fifteen characters of the label as its name (the kernel keeps no
/// more): labels begin alike and differ at their ends.
///
/// Thread and lifetime: those of SerialQueue. Destroyed from one of its own operations it aborts.
class ThreadSerialQueue final : public SerialQueue {
public:
    explicit ThreadSerialQueue(std::string label);
    ~ThreadSerialQueue() override;

    const std::string& label() const override { return m_label; }
    void post(Operation operation) override;

private:
    void run();
    void dropQueued();

    std::string m_label;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Operation> m_operations;
    bool m_isEnding = false;
    /// Last: it uses everything above.
    std::thread m_thread;
};

} // namespace kestrove
