#pragma once

#include "Async/MainLoop.h"

#include <optional>

namespace kestrove::x11 {

/// When a stream makes its next frame: after a change, and an interval after the last frame.
///
/// Most programs draw a change in one piece, which is shown at once. Some draw it in several steps,
/// each of which is told: a frame that is made at once shows a part of it. What is told right after
/// such a frame is taken for the rest and shown a moment later, whatever the interval, and the next
/// frames wait that moment for their changes to be whole. Then one is made at once again; the more
/// often in a row that is wrong, the more frames wait, from two to 64.
///
/// What a frame was late, because its change was or because timers go by milliseconds, is made up
/// for by those after it, each up to two milliseconds sooner than the interval would have it, up to
/// one interval in all. So a source that changes at the rate of the stream loses no frame (of 60 a
/// second 57 had been shown), and its changes come to be shown when they come and not at the end of
/// a wait. A frame in between, of something else that changed once, would have them wait for good:
/// each frame may make up for a hundredth of the interval more than was lost. Two frames may be two
/// milliseconds closer than the interval, and in the long run one in a hundred more of them come
/// than it allows, beside those that show the rest of a change.
class FramePacer {
public:
    /// The next frame is due now, however short ago the last one was.
    void restart() {
        m_due.reset();
        m_isRestDue = false;
    }

    /// How long to wait for the next frame after a change that was told `now`, the first since the
    /// last frame. Nothing: it is to be made before anything else is waited for.
    [[nodiscard]] Seconds wait(Seconds now);

    /// A frame was made `now`, and the next one shall be `interval` later.
    void made(Seconds now, Seconds interval);

private:
    std::optional<Seconds> m_due;
    /// When the last frame showed a change.
    std::optional<Seconds> m_shown;
    /// To be made up for: what frames were late, and what each may besides.
    Seconds m_lost{0};
    /// Whether the last frame did not wait for its change to be whole.
    bool m_wasAtOnce = false;
    /// The next frame shows what the last one lacked.
    bool m_isRestDue = false;
    /// How many frames wait after one that was made too early, and how many of them are left.
    int m_caution = 1;
    int m_framesToWaitWith = 0;
};

} // namespace kestrove::x11
