#include "UI/MenuBarView/Panel/PanelScrollArea.h"

#include <QEvent>
#include <QKeyEvent>

#include <algorithm>

namespace kestrove {

PanelScrollArea::PanelScrollArea(QWidget* content, QSize least)
    : m_least(least) {
    setWidget(content);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    // The ground is that of the panel.
    viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
}

QSize PanelScrollArea::sizeHint() const {
    const int width = m_least.width();
    const int height = widget()->hasHeightForWidth() ? widget()->heightForWidth(width)
                                                     : widget()->sizeHint().height();
    return {width, height};
}

QSize PanelScrollArea::minimumSizeHint() const {
    return {1, std::min(m_least.height(), sizeHint().height())};
}

void PanelScrollArea::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown)
        QScrollArea::keyPressEvent(event);
    else
        event->ignore(); // the arrows walk from row to row, in and out of this area
}

bool PanelScrollArea::eventFilter(QObject* watched, QEvent* event) {
    // Others scroll what grows; this one asks for more room.
    if (watched == widget() && event->type() == QEvent::LayoutRequest)
        updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}

} // namespace kestrove
