#include "Platform/X11/Overlay/RingShape.h"

#include <algorithm>

namespace kestrove::x11 {
namespace {

/// Samples in each direction of a pixel: 64 steps of coverage, finer than eyes.
constexpr int samples = 8;

/// One corner, the top left one; the others are its mirror images.
struct Corner {
    explicit Corner(const RingMeasures& measures)
        : line(measures.lineWidth)
        , radius(measures.cornerRadius)
        , columns(std::min(std::max(line, radius), (measures.width + 1) / 2))
        , rows(std::min(std::max(line, radius), (measures.height + 1) / 2)) {}

    /// 0 to 1.
    [[nodiscard]] double coverage(int x, int y) const {
        int covered = 0;
        for (int row = 0; row < samples; ++row) {
            for (int column = 0; column < samples; ++column)
                covered += isInRing(x + (column + 0.5) / samples, y + (row + 0.5) / samples);
        }
        return static_cast<double>(covered) / (samples * samples);
    }

    int line;
    int radius;
    int columns;
    int rows;

private:
    [[nodiscard]] bool isInRing(double x, double y) const {
        return isInside(x, y, radius) &&
               !(x >= line && y >= line &&
                 isInside(x - line, y - line, std::max(0, radius - line)));
    }
    /// Of a corner at the origin, rounded by `rounding`.
    static bool isInside(double x, double y, int rounding) {
        const double beyondX = rounding - x;
        const double beyondY = rounding - y;
        return beyondX <= 0 || beyondY <= 0 ||
               beyondX * beyondX + beyondY * beyondY <= static_cast<double>(rounding) * rounding;
    }
};

class Rectangles {
public:
    void add(int x, int y, int width, int height) {
        if (width > 0 && height > 0)
            m_list.push_back({static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                              static_cast<std::uint16_t>(width),
                              static_cast<std::uint16_t>(height)});
    }
    std::vector<xcb_rectangle_t> take() { return std::move(m_list); }

private:
    std::vector<xcb_rectangle_t> m_list;
};

} // namespace

std::vector<xcb_rectangle_t> ringRectangles(const RingMeasures& measures, RingEdges edges) {
    const Corner corner(measures);
    const int width = measures.width;
    const int height = measures.height;
    const auto isIn = [&](int x, int y) {
        const double coverage = corner.coverage(x, y);
        return edges == RingEdges::smooth ? coverage > 0 : coverage >= 0.5;
    };
    Rectangles rectangles;
    const auto addRow = [&](int y, int cornerRow) {
        int begin = 0;
        while (begin < corner.columns && !isIn(begin, cornerRow))
            ++begin;
        int end = begin;
        while (end < corner.columns && isIn(end, cornerRow))
            ++end;
        // Above the hole the row goes through to the other corner.
        if (cornerRow < corner.line || 2 * end >= width) {
            rectangles.add(begin, y, width - 2 * begin, 1);
        } else {
            rectangles.add(begin, y, end - begin, 1);
            rectangles.add(width - end, y, end - begin, 1);
        }
    };
    for (int row = 0; row < corner.rows; ++row) {
        addRow(row, row);
        if (height - 1 - row != row)
            addRow(height - 1 - row, row);
    }
    const int middle = height - 2 * corner.rows;
    if (2 * corner.line >= width) {
        rectangles.add(0, corner.rows, width, middle);
    } else {
        rectangles.add(0, corner.rows, corner.line, middle);
        rectangles.add(width - corner.line, corner.rows, corner.line, middle);
    }
    return rectangles.take();
}

std::vector<RingPixel> partlyCoveredPixels(const RingMeasures& measures) {
    const Corner corner(measures);
    std::vector<RingPixel> pixels;
    const auto add = [&](int x, int y, double coverage) {
        pixels.push_back({static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), coverage});
    };
    for (int y = 0; y < corner.rows; ++y) {
        for (int x = 0; x < corner.columns; ++x) {
            const double coverage = corner.coverage(x, y);
            if (coverage <= 0 || coverage >= 1)
                continue;
            const int right = measures.width - 1 - x;
            const int bottom = measures.height - 1 - y;
            add(x, y, coverage);
            add(right, y, coverage);
            add(x, bottom, coverage);
            add(right, bottom, coverage);
        }
    }
    return pixels;
}

} // namespace kestrove::x11
