#pragma once

#include <cstdint>
#include <vector>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// A frame drawn just inside the edges of a window, with rounded corners. Pixels of the window.
struct RingMeasures {
    int width = 0;
    int height = 0;
    int lineWidth = 0;
    /// Of the outer edge; the inner edge is rounded by what the line leaves of it.
    int cornerRadius = 0;
};

/// Whether edge pixels can be shown in part, which takes a compositor.
enum class RingEdges : std::uint8_t { smooth, sharp };

/// A pixel at an edge of a corner, and how much of it the frame covers.
struct RingPixel {
    std::int16_t x = 0;
    std::int16_t y = 0;
    double coverage = 0;
};

/// Which pixels a ring has: disjoint rectangles inside the window. With smooth edges each pixel
/// that the frame touches, with sharp ones each that it covers by half or more. A window too small
/// for the hole is all frame.
[[nodiscard]] std::vector<xcb_rectangle_t> ringRectangles(const RingMeasures& measures,
                                                          RingEdges edges);

/// The pixels of the ring that the frame covers in part.
[[nodiscard]] std::vector<RingPixel> partlyCoveredPixels(const RingMeasures& measures);

} // namespace kestrove::x11
