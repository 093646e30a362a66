#pragma once

#include "Async/Subscription.h"

#include <functional>

namespace kestrove {

/// Lets the main loop wake up when a file descriptor becomes readable (or is closed at its other
/// end).
///
/// Thread: main. The callback comes from the main loop, again and again while data is left unread.
/// The descriptor must stay open while it is watched.
class DescriptorWatching {
public:
    DescriptorWatching() = default;
    DescriptorWatching(const DescriptorWatching&) = delete;
    DescriptorWatching& operator=(const DescriptorWatching&) = delete;
    virtual ~DescriptorWatching() = default;

    [[nodiscard]] virtual Subscription watchReadable(int descriptor,
                                                     std::function<void()> ready) = 0;
};

} // namespace kestrove
