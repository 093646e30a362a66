#include "Async/MainLoopSerialQueue.h"

#include <utility>

namespace kestrove {

MainLoopSerialQueue::MainLoopSerialQueue(MainLoop& loop, std::string label)
    : m_loop(loop)
    , m_label(std::move(label))
    , m_operations(loop) {}

void MainLoopSerialQueue::post(Operation operation) {
    ++m_unfinished;
    // What waits is dropped with the queue.
    m_operations.post([this, waiting = std::move(operation)]() mutable { run(waiting); });
}

void MainLoopSerialQueue::dispatch(Operation operation) {
    if (!m_loop.isMainThread() || m_unfinished != 0) {
        post(std::move(operation));
        return;
    }
    ++m_unfinished;
    run(operation);
}

void MainLoopSerialQueue::run(Operation& operation) {
    operation();
    --m_unfinished;
}

} // namespace kestrove
