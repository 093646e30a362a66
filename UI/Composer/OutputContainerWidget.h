#pragma once

#include "UI/Composer/OutputContainerView.h"

#include <QWidget>

namespace kestrove {

class LayerHostWidget;
class PlaceholderWidget;

/// The output window's content as a widget.
///
/// Lifetime: the shown content's display layer outlives it, or is replaced by the placeholder
/// before.
class OutputContainerWidget final : public QWidget, public OutputContainerView {
public:
    OutputContainerWidget();
    ~OutputContainerWidget() override;

    void showContent(ContainerView& content) override;
    void showPlaceholder() override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void removeContent();
    /// What the toolkit has drawn of the window: megabytes, here and in the server.
    void letGoOfPixels();

    PlaceholderWidget* m_placeholder;
    LayerHostWidget* m_host;
    ContainerView* m_content = nullptr;
};

} // namespace kestrove
