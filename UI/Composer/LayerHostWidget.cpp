#include "UI/Composer/LayerHostWidget.h"

namespace kestrove {

LayerHostWidget::LayerHostWidget(QWidget* parent)
    : QWidget(parent) {
    // Its ancestors share the top level's native window.
    setAttribute(Qt::WA_DontCreateNativeAncestors);
    setAttribute(Qt::WA_NativeWindow);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_PaintOnScreen);
}

} // namespace kestrove
