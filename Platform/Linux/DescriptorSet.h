#pragma once

#include "Async/Signal.h"
#include "Platform/Linux/DescriptorWatching.h"

#include <map>

namespace kestrove {

/// Watches many descriptors by one of the main loop's. Each of the main loop's own costs at each of
/// its turns; one in here costs nothing until it is readable, and then a little more. For those
/// that hardly ever are.
///
/// Where the system refuses to take one in, it is watched by itself.
///
/// Thread: main. Lifetime: outlives the subscriptions; not longer than what it is made on.
class DescriptorSet final : public DescriptorWatching {
public:
    explicit DescriptorSet(DescriptorWatching& watching);
    ~DescriptorSet() override;

    Subscription watchReadable(int descriptor, std::function<void()> ready) override;

private:
    bool take(int descriptor);
    void letGo(int descriptor);
    void tell();

    DescriptorWatching& m_watching;
    /// Negative where the system has none left.
    int m_set;
    std::map<int, Signal<>> m_readable;
    Subscription m_anyReadable;
};

} // namespace kestrove
