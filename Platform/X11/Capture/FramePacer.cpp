#include "Platform/X11/Capture/FramePacer.h"

#include <algorithm>

namespace kestrove::x11 {
namespace {

constexpr Seconds timerGrain{0.001};

} // namespace

void FramePacer::made(Seconds now, Seconds interval) {
    const auto late = m_due ? std::clamp(now - *m_due, Seconds(0), timerGrain) : Seconds(0);
    m_due = now + interval - late;
}

Seconds FramePacer::wait(Seconds now) const {
    return m_due ? *m_due - now : Seconds(0);
}

} // namespace kestrove::x11
