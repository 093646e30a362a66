#pragma once

#include "Async/Signal.h"

namespace kestrove {

/// What is told of the user's session. Main thread.
struct SessionSignals {
    /// Locked, or another session has the seat.
    Signal<> resigned;
    Signal<> becameActive;
    /// The machine goes to sleep.
    Signal<> slept;
    /// The machine woke up, or who said that the session is locked has gone: whether the user is
    /// back, nobody knows.
    Signal<> woke;
};

} // namespace kestrove
