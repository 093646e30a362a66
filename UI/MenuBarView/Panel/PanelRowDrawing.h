#pragma once

#include "UI/MenuBarView/Panel/PanelRow.h"

#include <QFont>
#include <QPalette>
#include <QRect>

class QPainter;

namespace kestrove {

/// How a row looks now, apart from what it says. Pixels.
struct PanelRowLook {
    QRect rect;
    QPalette palette;
    QFont font;
    bool isHovered = false;
    bool isPressed = false;
    bool hasFocus = false;
};

void drawPanelRow(QPainter& painter, const PanelRowContent& content, const PanelRowLook& look);

/// What the row needs to show all of it.
[[nodiscard]] QSize panelRowSize(const PanelRowContent& content, const QFont& font);

/// Of lines between rows: seen on light grounds and on dark ones.
[[nodiscard]] QColor panelLineColor(const QPalette& palette);

/// Where a row's symbol begins, from its left edge: captions between rows stand in line with it.
[[nodiscard]] int panelRowIndent(const QFont& font);

} // namespace kestrove
