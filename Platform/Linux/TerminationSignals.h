#pragma once

#include "Async/Subscription.h"
#include "Platform/Linux/DescriptorWatching.h"

#include <functional>

namespace kestrove {

/// Turns the wish of the system or of a terminal that the program ends (SIGTERM, SIGINT, SIGHUP)
/// into a call from the main loop, so that it ends as it does for the user. Each of the signals
/// does so once: a second one ends the process at once, should the first have led to nothing.
///
/// Thread: main. One at a time in a process. Afterwards the signals do what they do by default.
class TerminationSignals {
public:
    TerminationSignals(DescriptorWatching& watching, std::function<void()> terminate);
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;
    ~TerminationSignals();

private:
    std::function<void()> m_terminate;
    int m_readEnd = -1;
    Subscription m_readable;
};

} // namespace kestrove
