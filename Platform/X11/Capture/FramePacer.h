#pragma once

#include "Async/MainLoop.h"

#include <optional>

namespace kestrove::x11 {

/// When a stream may make its next frame: the first at once, later ones an interval apart.
///
/// Timers go by milliseconds, and frames are late by that. What one was late is not added to the
/// interval after it: else a source that changes at the rate of the stream would lose frames (of 60
/// a second 57 were shown). So two frames may be a millisecond closer than the interval; never more
/// of them come than it allows.
class FramePacer {
public:
    /// A frame may be made at once, however short ago the last one was.
    void restart() { m_due.reset(); }

    /// A frame was made `now`, and the next one shall be `interval` later.
    void made(Seconds now, Seconds interval);

    /// How long to wait for the next frame; nothing or less when it may be made.
    [[nodiscard]] Seconds wait(Seconds now) const;

private:
    std::optional<Seconds> m_due;
};

} // namespace kestrove::x11
