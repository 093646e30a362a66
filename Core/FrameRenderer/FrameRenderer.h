#pragma once

#include "Core/Collaborators/OutputControlling.h"
#include "Core/FrameRenderer/ContainerView.h"
#include "Desktop/DisplayLayer.h"
#include "Desktop/SampleBuffer.h"

#include <memory>

namespace kestrove {

/// Owns the display layer on which the capture engine shows its frames, and the view that hosts it.
///
/// Thread: main.
class FrameRenderer final : public FrameRendering {
public:
    /// `layer` fits frames into itself on black; it must be there.
    explicit FrameRenderer(std::unique_ptr<DisplayLayer> layer);

    ContainerView& view() override { return m_view; }
    void flush() override;

    /// Shows `sample` from now on. A layer that has failed is flushed first, which makes it try
    /// anew: without that it would stay black until the next change of source.
    void display(SampleBufferPointer sample);

private:
    std::unique_ptr<DisplayLayer> m_displayLayer;
    ContainerView m_view;
};

} // namespace kestrove
