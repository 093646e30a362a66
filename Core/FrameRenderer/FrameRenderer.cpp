#include "Core/FrameRenderer/FrameRenderer.h"

#include <utility>

namespace kestrove {

FrameRenderer::FrameRenderer(std::unique_ptr<DisplayLayer> layer)
    : m_displayLayer(std::move(layer))
    , m_view(*m_displayLayer) {}

void FrameRenderer::flush() {
    m_displayLayer->flush();
}

void FrameRenderer::display(SampleBufferPointer sample) {
    if (m_displayLayer->status() == DisplayLayerStatus::failed)
        m_displayLayer->flush();
    m_displayLayer->enqueue(std::move(sample));
}

} // namespace kestrove
