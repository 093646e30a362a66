#pragma once

#include "Desktop/DisplayLayer.h"

namespace kestrove {

/// The view that hosts the display layer. It is only a name for what the platform's own view has to
/// show: the user interface joins the layer to a native view of its own.
///
/// Lifetime: that of the renderer that made it. Main thread.
class ContainerView {
public:
    explicit ContainerView(DisplayLayer& layer)
        : m_displayLayer(layer) {}
    ContainerView(const ContainerView&) = delete;
    ContainerView& operator=(const ContainerView&) = delete;
    ~ContainerView() = default;

    [[nodiscard]] DisplayLayer& displayLayer() const { return m_displayLayer; }

private:
    DisplayLayer& m_displayLayer;
};

} // namespace kestrove
