#pragma once

#include "Async/Task.h"
#include "Core/CaptureError.h"
#include "Core/CaptureSource/CaptureSource.h"
#include "Desktop/Geometry.h"

#include <expected>
#include <functional>
#include <optional>
#include <set>

namespace kestrove {

/// Windows that a capture leaves out.
using WindowIDSet = std::set<WindowID>;

/// The pixel size that a capture was configured with, or why it failed.
using CaptureResult = std::expected<Size, CaptureError>;

/// The one capture stream, as the controller sees it. Main thread.
class CaptureControlling {
public:
    CaptureControlling() = default;
    CaptureControlling(const CaptureControlling&) = delete;
    CaptureControlling& operator=(const CaptureControlling&) = delete;
    virtual ~CaptureControlling() = default;

    /// What the stream shows; set only after a successful reconfiguration, cleared by `stop`.
    [[nodiscard]] virtual std::optional<CaptureSource> currentSource() const = 0;

    /// Called on the main thread when the platform ends the current stream by itself.
    virtual void setOnUnexpectedStop(std::function<void()> callback) = 0;

    /// Windows that a display capture must leave out; read at the next reconfiguration.
    virtual void setExcludedWindowIDs(WindowIDSet windows) = 0;

    /// Frames a second, clamped to 1 to 60; takes effect at the next reconfiguration.
    virtual void setFPS(int framesPerSecond) = 0;

    /// The same reconfiguration as `switchSource`.
    [[nodiscard]] virtual Task<CaptureResult> start(CaptureSource source) = 0;

    /// Creates a stream when none exists, retargets the running one otherwise.
    [[nodiscard]] virtual Task<CaptureResult> switchSource(CaptureSource to) = 0;

    /// Stops and forgets the stream; afterwards `currentSource` is absent. Never fails.
    [[nodiscard]] virtual Task<void> stop() = 0;
};

} // namespace kestrove
