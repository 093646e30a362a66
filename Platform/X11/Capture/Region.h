#pragma once

#include <cstdint>
#include <pixman.h>
#include <span>
#include <vector>
#include <xcb/xcb.h>

namespace kestrove::x11 {

/// A set of pixels, kept on our side of the connection. Whoever holds one says whose pixels they
/// are (the root window's, a window's, a frame's).
class Region {
public:
    Region() { pixman_region32_init(&m_region); }
    Region(int x, int y, int width, int height);
    explicit Region(const xcb_rectangle_t& rectangle);
    explicit Region(std::span<const xcb_rectangle_t> rectangles);
    Region(const Region& other);
    Region(Region&& other) noexcept;
    Region& operator=(const Region& other);
    Region& operator=(Region&& other) noexcept;
    ~Region() { pixman_region32_fini(&m_region); }

    Region& operator+=(const Region& other);
    Region& operator-=(const Region& other);
    Region& operator&=(const Region& other);
    void translate(int x, int y);

    [[nodiscard]] friend Region operator+(Region a, const Region& b) { return a += b; }
    [[nodiscard]] friend Region operator-(Region a, const Region& b) { return a -= b; }
    [[nodiscard]] friend Region operator&(Region a, const Region& b) { return a &= b; }
    [[nodiscard]] Region translated(int x, int y) const;

    [[nodiscard]] bool isEmpty() const;
    void clear();
    [[nodiscard]] std::span<const pixman_box32_t> boxes() const;
    [[nodiscard]] std::vector<xcb_rectangle_t> rectangles() const;
    [[nodiscard]] xcb_rectangle_t extents() const;
    bool operator==(const Region& other) const;

private:
    pixman_region32_t m_region;
};

} // namespace kestrove::x11
