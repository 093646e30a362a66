#pragma once

#include "Async/Timer.h"
#include "Core/Collaborators/SourceDiscovery.h"

namespace kestrove {

/// The refresh schedule of the application: at most one repeating timer of the main loop.
///
/// Thread: main. Lifetime: the loop outlives it; destroying it cancels.
class TimerSourceRefreshScheduler final : public SourceRefreshScheduling {
public:
    explicit TimerSourceRefreshScheduler(MainLoop& loop)
        : m_loop(loop) {}

    void schedule(Seconds every, Operation operation) override;
    void cancel() override;
    [[nodiscard]] bool isScheduled() const { return m_timer.isPending(); }

private:
    MainLoop& m_loop;
    Timer m_timer;
};

} // namespace kestrove
