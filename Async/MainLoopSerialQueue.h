#pragma once

#include "Async/SerialQueue.h"
#include "Async/TaskScope.h"

#include <string>

namespace kestrove {

/// A serial queue whose operations run on the main thread, each in a turn of its own. For work that
/// is shorter than waking another thread for it.
///
/// Thread: any. Lifetime: that of SerialQueue, destroyed on the main thread.
class MainLoopSerialQueue final : public SerialQueue {
public:
    MainLoopSerialQueue(MainLoop& loop, std::string label);

    const std::string& label() const override { return m_label; }
    void post(Operation operation) override;

private:
    std::string m_label;
    TaskScope m_operations;
};

} // namespace kestrove
