#pragma once

#include "Async/MainLoop.h"

#include <optional>

namespace kestrove::x11 {

/// When a stream makes its next frame: a moment after a change, and an interval after the last one.
///
/// The moment is there since a program draws a change in several steps, each of which is told: a
/// frame that was made at once would show a part of it, and the rest an interval later.
///
/// What a frame was late, because its change was or because timers go by milliseconds, is made up
/// for by those after it, each up to a millisecond sooner than the interval would have it, up to
/// one interval in all. So a source that changes at the rate of the stream loses no frame (of 60 a
/// second 57 had been shown), and its changes come to be shown a moment later each and not at the
/// end of a wait. Two frames may be a millisecond closer than the interval; in the long run never
/// more of them come than it allows.
class FramePacer {
public:
    /// The next frame is due now, however short ago the last one was.
    void restart() { m_due.reset(); }

    /// A frame was made `now`, and the next one shall be `interval` later.
    void made(Seconds now, Seconds interval);

    /// How long to wait for the next frame after a change.
    [[nodiscard]] Seconds wait(Seconds now) const;

private:
    std::optional<Seconds> m_due;
    /// Lost by frames that were late, and not made up for yet.
    Seconds m_lost{0};
};

} // namespace kestrove::x11
