#include "UI/Composer/OutputContainer.h"

namespace kestrove {

OutputContainer::OutputContainer(OutputContainerView& view)
    : m_view(view) {
    m_view.showPlaceholder();
}

void OutputContainer::setContentView(ContainerView* view) {
    if (view == m_contentView)
        return;
    m_contentView = view;
    if (view)
        m_view.showContent(*view);
    else
        m_view.showPlaceholder();
}

} // namespace kestrove
