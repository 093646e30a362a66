#pragma once

#include "UI/ShortcutRecorder/RecorderLogic.h"

#include <QPainter>
#include <QSize>
#include <QWidget>

/// How a recorder is drawn. Lengths are points: 96 to an inch of the desktop's resolution.
namespace kestrove::RecorderDrawing {

/// In pixels.
[[nodiscard]] QSize size(const QWidget& widget);

/// Fills the widget, in the colours of its palette, so that it is right in light and dark themes.
void draw(QPainter& painter, const QWidget& widget, const RecorderAppearance& appearance);

} // namespace kestrove::RecorderDrawing
