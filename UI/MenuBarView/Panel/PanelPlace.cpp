#include "UI/MenuBarView/Panel/PanelPlace.h"

#include <algorithm>

namespace kestrove {

namespace {

/// `start` moved so that `length` from it lies within the range, which is at least as long.
int within(int start, int length, int low, int range) {
    return std::clamp(start, low, low + range - length);
}

QRect beside(QSize size, QRect anchor, QRect available) {
    const int roomToTheLeft = anchor.left() - available.left();
    const int roomToTheRight = available.right() - anchor.right();
    const bool goesRight = roomToTheRight >= roomToTheLeft;
    const int x = goesRight ? anchor.right() + 1 : anchor.left() - size.width();
    const int y = anchor.center().y() - size.height() / 2;
    return {within(x, size.width(), available.x(), available.width()),
            within(y, size.height(), available.y(), available.height()), size.width(),
            size.height()};
}

} // namespace

QRect panelPlace(QSize size, QRect anchor, QRect available) {
    size = size.boundedTo(available.size());
    const int roomAbove = anchor.top() - available.top();
    const int roomBelow = available.bottom() - anchor.bottom();
    const bool goesBelow = roomBelow >= size.height() || roomBelow >= roomAbove;
    const int room = std::min(goesBelow ? roomBelow : roomAbove, available.height());
    if (room < size.height() && room < available.height() * 2 / 3)
        return beside(size, anchor, available);
    const int height = std::min(size.height(), room);
    const int x = anchor.x() + (anchor.width() - size.width()) / 2;
    const int y = goesBelow ? anchor.bottom() + 1 : anchor.top() - height;
    return {within(x, size.width(), available.x(), available.width()),
            within(y, height, available.y(), available.height()), size.width(), height};
}

} // namespace kestrove
