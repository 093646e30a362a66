#include "UI/MenuBarView/Panel/PanelScrollArea.h"

#include "UI/MenuBarView/Panel/PanelRowDrawing.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace kestrove {

namespace {

constexpr int lineRoom = 2; // pixels above and below the lists

} // namespace

PanelScrollArea::PanelScrollArea(QWidget* content, QSize least)
    : m_least(least) {
    setWidget(content);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    setViewportMargins(0, lineRoom, 0, lineRoom);
    const auto redraw = [this] { update(); };
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, redraw);
    connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, redraw);
    // The ground is that of the panel.
    viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
}

QSize PanelScrollArea::sizeHint() const {
    const int width = m_least.width();
    const int height = widget()->hasHeightForWidth() ? widget()->heightForWidth(width)
                                                     : widget()->sizeHint().height();
    return {width, height + 2 * lineRoom};
}

QSize PanelScrollArea::minimumSizeHint() const {
    return {1, std::min(m_least.height(), sizeHint().height())};
}

bool PanelScrollArea::event(QEvent* event) {
    const bool isHandled = QScrollArea::event(event);
    if (event->type() == QEvent::Paint)
        drawEnds();
    return isHandled;
}

void PanelScrollArea::drawEnds() {
    const auto& bar = *verticalScrollBar();
    QPainter painter(this);
    painter.setPen(panelLineColor(palette()));
    const int end = viewport()->width() - 1;
    if (bar.value() > bar.minimum())
        painter.drawLine(0, 0, end, 0);
    if (bar.value() < bar.maximum())
        painter.drawLine(0, height() - 1, end, height() - 1);
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
