#include "Platform/X11/Capture/FramePacer.h"

#include <algorithm>

namespace kestrove::x11 {
namespace {

constexpr Seconds timerGrain{0.001};

} // namespace

void FramePacer::made(Seconds now, Seconds interval) {
    // The first is no change of the source's, whose times are not known yet.
    const auto late = m_due ? now - *m_due : interval;
    m_lost = std::clamp(m_lost + late, Seconds(0), interval);
    const auto sooner = std::min(m_lost, timerGrain);
    m_lost -= sooner;
    m_due = now + interval - sooner;
}

Seconds FramePacer::wait(Seconds now) const {
    return m_due ? std::max(*m_due - now, timerGrain) : timerGrain;
}

} // namespace kestrove::x11
