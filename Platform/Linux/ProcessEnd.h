#pragma once

#include "Async/Subscription.h"
#include "Desktop/Identifiers.h"
#include "Platform/Linux/DescriptorWatching.h"

#include <functional>
#include <memory>

namespace kestrove {

/// Waits for one process to end, however it ends, without asking again and again. It holds on to
/// that very process: another one that gets its number later is not mistaken for it.
///
/// Thread: main. The callback comes from the main loop, once; destroying this ends the wait, also
/// from inside the callback.
class ProcessEnd {
public:
    /// Null when no such process runs.
    [[nodiscard]] static std::unique_ptr<ProcessEnd>
    watch(DescriptorWatching& watching, ProcessID process, std::function<void()> ended);

    ProcessEnd(const ProcessEnd&) = delete;
    ProcessEnd& operator=(const ProcessEnd&) = delete;
    ~ProcessEnd();

private:
    explicit ProcessEnd(int descriptor)
        : m_descriptor(descriptor) {}

    int m_descriptor;
    Subscription m_readable;
};

} // namespace kestrove
