#include "Platform/X11/Capture/Region.h"

#include <utility>

namespace kestrove::x11 {
namespace {

// Pixman's read-only calls take regions without const.
pixman_region32_t* readable(const pixman_region32_t& region) {
    return const_cast<pixman_region32_t*>(&region); // NOLINT(cppcoreguidelines-pro-type-const-cast)
}

xcb_rectangle_t rectangle(const pixman_box32_t& box) {
    return {static_cast<std::int16_t>(box.x1), static_cast<std::int16_t>(box.y1),
            static_cast<std::uint16_t>(box.x2 - box.x1),
            static_cast<std::uint16_t>(box.y2 - box.y1)};
}

} // namespace

Region::Region(int x, int y, int width, int height) {
    if (width > 0 && height > 0)
        pixman_region32_init_rect(&m_region, x, y, static_cast<unsigned>(width),
                                  static_cast<unsigned>(height));
    else
        pixman_region32_init(&m_region);
}

Region::Region(const xcb_rectangle_t& rectangle)
    : Region(rectangle.x, rectangle.y, rectangle.width, rectangle.height) {}

Region::Region(std::span<const xcb_rectangle_t> rectangles) {
    std::vector<pixman_box32_t> boxes;
    boxes.reserve(rectangles.size());
    for (const auto& each : rectangles)
        boxes.push_back({each.x, each.y, each.x + each.width, each.y + each.height});
    pixman_region32_init_rects(&m_region, boxes.data(), static_cast<int>(boxes.size()));
}

Region::Region(const Region& other)
    : Region() {
    pixman_region32_copy(&m_region, readable(other.m_region));
}

Region::Region(Region&& other) noexcept
    : Region() {
    std::swap(m_region, other.m_region);
}

Region& Region::operator=(const Region& other) {
    if (this != &other)
        pixman_region32_copy(&m_region, readable(other.m_region));
    return *this;
}

Region& Region::operator=(Region&& other) noexcept {
    std::swap(m_region, other.m_region);
    return *this;
}

Region& Region::operator+=(const Region& other) {
    pixman_region32_union(&m_region, &m_region, readable(other.m_region));
    return *this;
}

Region& Region::operator-=(const Region& other) {
    pixman_region32_subtract(&m_region, &m_region, readable(other.m_region));
    return *this;
}

Region& Region::operator&=(const Region& other) {
    pixman_region32_intersect(&m_region, &m_region, readable(other.m_region));
    return *this;
}

void Region::translate(int x, int y) {
    pixman_region32_translate(&m_region, x, y);
}

Region Region::translated(int x, int y) const {
    Region moved(*this);
    moved.translate(x, y);
    return moved;
}

bool Region::isEmpty() const {
    return !pixman_region32_not_empty(readable(m_region));
}

void Region::clear() {
    pixman_region32_clear(&m_region);
}

std::span<const pixman_box32_t> Region::boxes() const {
    int count = 0;
    const auto* const first = pixman_region32_rectangles(readable(m_region), &count);
    return {first, static_cast<std::size_t>(count)};
}

std::vector<xcb_rectangle_t> Region::rectangles() const {
    std::vector<xcb_rectangle_t> result;
    result.reserve(boxes().size());
    for (const auto& box : boxes())
        result.push_back(rectangle(box));
    return result;
}

xcb_rectangle_t Region::extents() const {
    return rectangle(*pixman_region32_extents(readable(m_region)));
}

bool Region::operator==(const Region& other) const {
    return pixman_region32_equal(readable(m_region), readable(other.m_region));
}

} // namespace kestrove::x11
