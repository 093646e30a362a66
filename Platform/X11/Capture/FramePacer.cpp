#include "Platform/X11/Capture/FramePacer.h"

#include <algorithm>
#include <utility>

namespace kestrove::x11 {
namespace {

/// Of timers. What a change is given to become whole, too.
constexpr Seconds grain{0.001};
/// What is told this soon after a frame would have been part of it, had it waited: the server has
/// to draw the frame before it tells more.
constexpr Seconds rightAfter = 2 * grain;
/// Frames.
constexpr int mostCaution = 64;
/// More than a timer can be late, or it would never be made up for.
constexpr Seconds soonest = 2 * grain;
/// Of an interval.
constexpr double freelyMadeUpFor = 0.01;

} // namespace

Seconds FramePacer::wait(Seconds now) {
    if (std::exchange(m_wasAtOnce, false)) {
        m_isRestDue = m_shown && now - *m_shown < rightAfter;
        m_caution = m_isRestDue ? std::min(2 * m_caution, mostCaution) : 1;
        if (m_isRestDue) {
            m_framesToWaitWith = m_caution;
            return grain;
        }
    }
    const auto rest = m_due ? *m_due - now : Seconds(0);
    m_wasAtOnce = rest <= Seconds(0) && m_framesToWaitWith == 0;
    return m_wasAtOnce ? Seconds(0) : std::max(rest, grain);
}

void FramePacer::made(Seconds now, Seconds interval) {
    // The first shows no change of the source's: nothing is known yet of when and how those come.
    m_shown = m_due ? std::optional(now) : std::nullopt;
    if (std::exchange(m_isRestDue, false))
        return;
    const auto late = m_due ? now - *m_due : interval;
    m_lost = std::clamp(m_lost + late + freelyMadeUpFor * interval, Seconds(0), interval);
    const auto sooner = std::min(m_lost, soonest);
    m_lost -= sooner;
    m_due = now + interval - sooner;
    m_framesToWaitWith = std::max(m_framesToWaitWith - 1, 0);
}

} // namespace kestrove::x11
