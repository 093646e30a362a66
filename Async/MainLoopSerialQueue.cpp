#include "Async/MainLoopSerialQueue.h"

#include <utility>

namespace kestrove {

MainLoopSerialQueue::MainLoopSerialQueue(MainLoop& loop, std::string label)
    : m_label(std::move(label))
    , m_operations(loop) {}

void MainLoopSerialQueue::post(Operation operation) {
    m_operations.post(std::move(operation));
}

} // namespace kestrove
