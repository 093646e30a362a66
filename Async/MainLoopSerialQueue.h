#pragma once

#include "Async/SerialQueue.h"
#include "Async/TaskScope.h"

#include <atomic>
#include <string>

namespace kestrove {

/// A serial queue whose operations run on the main thread: those that were posted in turns of their
/// own, those that were dispatched at once where they can. For work that is shorter than waking
/// another thread for it.
///
/// Thread: any. Lifetime: that of SerialQueue, destroyed on the main thread.
class MainLoopSerialQueue final : public SerialQueue {
public:
    MainLoopSerialQueue(MainLoop& loop, std::string label);

    const std::string& label() const override { return m_label; }
    void post(Operation operation) override;
    void dispatch(Operation operation) override;

private:
    void run(Operation& operation);

    MainLoop& m_loop;
    std::string m_label;
    /// How many operations run or wait.
    std::atomic<int> m_unfinished = 0;
    TaskScope m_operations;
};

} // namespace kestrove
