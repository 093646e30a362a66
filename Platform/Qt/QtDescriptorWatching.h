#pragma once

#include "Platform/Linux/DescriptorWatching.h"

namespace kestrove {

/// Descriptors watched by Qt's event loop. Made after the QCoreApplication.
class QtDescriptorWatching final : public DescriptorWatching {
public:
    Subscription watchReadable(int descriptor, std::function<void()> ready) override;
};

} // namespace kestrove
