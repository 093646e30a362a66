#pragma once

namespace kestrove {

/// Points of a desktop, unless a name says pixels. Two coordinate systems exist and every rectangle
/// says which one it is in:
///  - "screen": origin at the bottom left of the main screen, y upwards;
///  - "window server": origin at the top left of the main screen, y downwards.

struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

/// A half-open rectangle: its smaller edges belong to it, its larger ones do not.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] double minX() const { return x; }
    [[nodiscard]] double minY() const { return y; }
    [[nodiscard]] double midX() const { return x + width / 2; }
    [[nodiscard]] double midY() const { return y + height / 2; }
    [[nodiscard]] double maxX() const { return x + width; }
    [[nodiscard]] double maxY() const { return y + height; }
    [[nodiscard]] Point origin() const { return {x, y}; }
    [[nodiscard]] Point center() const { return {midX(), midY()}; }
    [[nodiscard]] Size size() const { return {width, height}; }
    [[nodiscard]] bool contains(Point point) const {
        return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
    }

    bool operator==(const Rect&) const = default;
};

} // namespace kestrove
