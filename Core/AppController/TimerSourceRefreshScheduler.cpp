#include "Core/AppController/TimerSourceRefreshScheduler.h"

#include <utility>

namespace kestrove {

void TimerSourceRefreshScheduler::schedule(Seconds every, Operation operation) {
    cancel();
    m_timer = m_loop.runEvery(every, std::move(operation));
}

void TimerSourceRefreshScheduler::cancel() {
    m_timer.cancel();
}

} // namespace kestrove
