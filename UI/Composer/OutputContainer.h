#pragma once

#include "Core/Collaborators/OutputControlling.h"
#include "UI/Composer/OutputContainerView.h"

namespace kestrove {

/// Decides what the output window's content view shows: the renderer's view while something is
/// shared, the placeholder otherwise.
///
/// Thread: main. `view` outlives the container.
class OutputContainer final : public OutputContentControlling {
public:
    /// Starts with the placeholder.
    explicit OutputContainer(OutputContainerView& view);

    /// Setting what is shown already does nothing: a view that is taken out and put back would
    /// flicker in front of everyone who watches.
    void setContentView(ContainerView* view) override;

private:
    OutputContainerView& m_view;
    ContainerView* m_contentView = nullptr;
};

} // namespace kestrove
