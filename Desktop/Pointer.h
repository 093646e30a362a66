#pragma once

#include "Async/Subscription.h"
#include "Desktop/Geometry.h"

#include <functional>

namespace kestrove {

/// The pointer. Monitors watch; they never take an event away from anybody.
///
/// Thread: main. Callbacks come from the main loop, at most once a wake-up however far the pointer
/// has moved.
class Pointer {
public:
    Pointer() = default;
    Pointer(const Pointer&) = delete;
    Pointer& operator=(const Pointer&) = delete;
    virtual ~Pointer() = default;

    /// Points, screen coordinates.
    [[nodiscard]] virtual Point location() = 0;

    /// The pointer moved over windows of other applications, or over none.
    [[nodiscard]] virtual Subscription addGlobalMovedMonitor(std::function<void()> moved) = 0;
    /// The pointer moved over a window of this application.
    [[nodiscard]] virtual Subscription addLocalMovedMonitor(std::function<void()> moved) = 0;
};

} // namespace kestrove
