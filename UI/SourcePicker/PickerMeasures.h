#pragma once

#include <QFont>
#include <QPaintDevice>

namespace kestrove {

/// Sizes of the picker, in pixels of a device: points enlarged by as much as its texts are.
class PickerMeasures {
public:
    PickerMeasures() = default;
    explicit PickerMeasures(const QPaintDevice& device);

    [[nodiscard]] int pixels(double points) const;

    [[nodiscard]] int margin() const { return pixels(20); }
    [[nodiscard]] int narrowestTile() const { return pixels(216); }
    [[nodiscard]] int tileGap() const { return pixels(12); }

private:
    double m_scale = 1;
};

/// `font` at this part of its size, whichever unit that is in.
[[nodiscard]] QFont scaledFont(QFont font, double scale);

} // namespace kestrove
