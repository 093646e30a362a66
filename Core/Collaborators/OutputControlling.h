#pragma once

#include "Core/CaptureSource/CaptureSource.h"
#include "Core/FrameRenderer/ContainerView.h"
#include "Desktop/Geometry.h"

#include <optional>

namespace kestrove {

// The output side as the controller sees it. Everything here is on the main thread.

class FrameRendering {
public:
    FrameRendering() = default;
    FrameRendering(const FrameRendering&) = delete;
    FrameRendering& operator=(const FrameRendering&) = delete;
    virtual ~FrameRendering() = default;

    /// The view to place in the output container.
    [[nodiscard]] virtual ContainerView& view() = 0;
    /// Empties the display layer: no frame of the previous source stays visible.
    virtual void flush() = 0;
};

class OutputContentControlling {
public:
    OutputContentControlling() = default;
    OutputContentControlling(const OutputContentControlling&) = delete;
    OutputContentControlling& operator=(const OutputContentControlling&) = delete;
    virtual ~OutputContentControlling() = default;

    /// With a view: shows it and hides the placeholder. With none: removes the view that is shown
    /// and shows the placeholder.
    virtual void setContentView(ContainerView* view) = 0;
};

class OutputWindowControlling {
public:
    OutputWindowControlling() = default;
    OutputWindowControlling(const OutputWindowControlling&) = delete;
    OutputWindowControlling& operator=(const OutputWindowControlling&) = delete;
    virtual ~OutputWindowControlling() = default;

    /// Absent while the window does not exist.
    [[nodiscard]] virtual std::optional<WindowID> windowID() const = 0;
    virtual void show() = 0;
    /// Hidden from the user's own desktop, while other programs can go on capturing it.
    virtual void setHidden(bool hidden) = 0;
    virtual void setAlwaysOnTop(bool alwaysOnTop) = 0;
    /// `pixelSize` is what the capture engine returned.
    virtual void matchContentAspectRatio(Size pixelSize) = 0;
};

class ActiveSourceOverlayControlling {
public:
    ActiveSourceOverlayControlling() = default;
    ActiveSourceOverlayControlling(const ActiveSourceOverlayControlling&) = delete;
    ActiveSourceOverlayControlling& operator=(const ActiveSourceOverlayControlling&) = delete;
    virtual ~ActiveSourceOverlayControlling() = default;

    /// Absent while the overlay has no window.
    [[nodiscard]] virtual std::optional<WindowID> windowID() const = 0;
    /// Marks `source` on screen and keeps following it.
    virtual void show(CaptureSource source) = 0;
    virtual void hide() = 0;
};

} // namespace kestrove
