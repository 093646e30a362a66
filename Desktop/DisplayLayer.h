#pragma once

#include "Desktop/SampleBuffer.h"

#include <cstdint>
#include <memory>

namespace kestrove {

/// The platform's own number for a native view: on X11, the window that hosts the layer.
using NativeViewHandle = std::uintptr_t;

enum class DisplayLayerStatus {
    /// Nothing was enqueued since the layer was made or flushed.
    unknown,
    rendering,
    /// The layer cannot show what it was given; a flush makes it try anew.
    failed,
};

/// Where samples become visible. A frame is fitted into the layer with its aspect ratio kept and
/// centred, the rest is black; the last frame stays until the next one or a flush, also while the
/// layer is resized, covered, hidden or parked off screen.
///
/// Thread: main.
class DisplayLayer {
public:
    DisplayLayer() = default;
    DisplayLayer(const DisplayLayer&) = delete;
    DisplayLayer& operator=(const DisplayLayer&) = delete;
    virtual ~DisplayLayer() = default;

    /// Puts the layer into `host`, filling it and following its size; 0 takes it out. One layer a
    /// host. The host must be taken away before it is destroyed; a layer that is destroyed leaves
    /// its host. A layer without a host keeps its frame.
    virtual void setHost(NativeViewHandle host) = 0;

    /// Shows `sample` from now on; ignored while the layer has failed. `sample` is a valid screen
    /// sample with a picture (its frame status is complete or absent). Samples of another
    /// platform's capture make the layer fail.
    virtual void enqueue(SampleBufferPointer sample) = 0;

    /// Drops what is shown and queued: the layer is black when this returns, for everyone who asks
    /// the platform after it.
    virtual void flush() = 0;

    [[nodiscard]] virtual DisplayLayerStatus status() const = 0;
};

} // namespace kestrove
