#include "UI/SourcePicker/PickerMeasures.h"

#include <algorithm>
#include <cmath>

namespace kestrove {

namespace {

constexpr double ordinaryDotsPerInch = 96;

} // namespace

PickerMeasures::PickerMeasures(const QPaintDevice& device)
    : m_scale(std::max(1.0, device.logicalDpiX() / ordinaryDotsPerInch)) {}

int PickerMeasures::pixels(double points) const {
    return static_cast<int>(std::lround(points * m_scale));
}

QFont scaledFont(QFont font, double scale) {
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * scale);
    else
        font.setPixelSize(static_cast<int>(std::lround(font.pixelSize() * scale)));
    return font;
}

} // namespace kestrove
