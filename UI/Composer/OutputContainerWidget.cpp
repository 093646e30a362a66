#include "UI/Composer/OutputContainerWidget.h"

#include "UI/Composer/LayerHostWidget.h"
#include "UI/Composer/PlaceholderWidget.h"

#include <QBackingStore>

#include <utility>

namespace kestrove {

OutputContainerWidget::OutputContainerWidget()
    : m_placeholder(new PlaceholderWidget(this))
    , m_host(new LayerHostWidget(this)) {
    m_host->hide();
}

OutputContainerWidget::~OutputContainerWidget() {
    removeContent();
}

void OutputContainerWidget::showContent(ContainerView& content) {
    removeContent();
    m_content = &content;
    content.displayLayer().setHost(m_host->winId());
    m_host->show();
    m_placeholder->hide();
    letGoOfPixels();
}

void OutputContainerWidget::letGoOfPixels() {
    // Nothing of it is seen while the content lies above. Before it draws again, the toolkit makes
    // it as large as the window by itself.
    if (auto* const pixels = window()->backingStore())
        pixels->resize(QSize(1, 1));
}

void OutputContainerWidget::showPlaceholder() {
    m_placeholder->show();
    m_host->hide();
    removeContent();
}

void OutputContainerWidget::removeContent() {
    if (auto* const content = std::exchange(m_content, nullptr))
        content->displayLayer().setHost(0);
}

void OutputContainerWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    m_placeholder->setGeometry(rect());
    m_host->setGeometry(rect());
}

} // namespace kestrove
