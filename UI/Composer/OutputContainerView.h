#pragma once

#include "Core/FrameRenderer/ContainerView.h"

namespace kestrove {

/// The native view that fills the output window: a black area that shows either the captured frames
/// or the placeholder.
///
/// The placeholder fills the view and follows its size: black, with the label of PlaceholderTexts
/// in the desktop's secondary label colour, 14 points, centred on both axes, at most two lines.
///
/// Thread: main. Lifetime: outlives the window it is placed in and the `OutputContainer` that
/// drives it.
class OutputContainerView {
public:
    OutputContainerView() = default;
    OutputContainerView(const OutputContainerView&) = delete;
    OutputContainerView& operator=(const OutputContainerView&) = delete;
    virtual ~OutputContainerView() = default;

    /// Hosts the display layer of `content` over the whole view, following its size, in place of
    /// the placeholder or of the content shown before, whose layer loses its host.
    virtual void showContent(ContainerView& content) = 0;

    /// Takes the content out, if one is shown, and shows the placeholder.
    virtual void showPlaceholder() = 0;
};

} // namespace kestrove
