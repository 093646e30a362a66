#include "Platform/Simulated/SimulatedPicture.h"

#include "Platform/Simulated/SimulatedDesktop.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace kestrove {

namespace {

bool contains(const std::vector<WindowID>& windows, WindowID window) {
    return std::ranges::find(windows, window) != windows.end();
}

bool holds(const Rect& outer, const Rect& inner) {
    return inner.minX() >= outer.minX() && inner.maxX() <= outer.maxX() &&
           inner.minY() >= outer.minY() && inner.maxY() <= outer.maxY();
}

bool meets(const Rect& a, const Rect& b) {
    return a.minX() < b.maxX() && b.minX() < a.maxX() && a.minY() < b.maxY() && b.minY() < a.maxY();
}

bool isCovered(const Rect& frame, const std::vector<SimulatedPicture::Tile>& front) {
    return std::ranges::any_of(
        front, [&](const auto& tile) { return tile.alpha >= 1 && holds(tile.frame, frame); });
}

std::uint8_t blend(std::uint8_t over, double alpha, std::uint8_t under) {
    return static_cast<std::uint8_t>(std::lround(over * alpha + under * (1 - alpha)));
}

void addCursor(SimulatedPicture& picture, const Rect& area, Point pointer) {
    if (area.contains(pointer))
        picture.cursor = Point{pointer.x - area.x, pointer.y - area.y};
}

std::optional<SimulatedPicture> takeDisplayPicture(const SimulatedDesktop& desktop,
                                                   const DisplayFilter& filter,
                                                   CursorShown cursor) {
    const auto* display = desktop.findDisplay(filter.displayID);
    if (!display)
        return std::nullopt;
    const auto area = desktop.flipped(display->frame);
    SimulatedPicture picture;
    picture.size = area.size();
    picture.background = display->background;
    for (const auto& window : desktop.windows()) {
        const Rect frame{window.frame.x - area.x, window.frame.y - area.y, window.frame.width,
                         window.frame.height};
        if (window.isOnScreen && window.alpha > 0 && meets(window.frame, area) &&
            !contains(filter.excludedWindows, window.windowID) && !isCovered(frame, picture.tiles))
            picture.tiles.push_back({window.windowID, frame, window.alpha, window.color});
    }
    if (cursor == CursorShown::yes)
        addCursor(picture, area, desktop.flipped(desktop.pointer()));
    return picture;
}

std::optional<SimulatedPicture> takeWindowPicture(const SimulatedDesktop& desktop,
                                                  const WindowFilter& filter, CursorShown cursor) {
    const auto* window = desktop.findWindow(filter.windowID);
    if (!window)
        return std::nullopt;
    SimulatedPicture picture;
    picture.size = window->frame.size();
    picture.tiles.push_back(
        {window->windowID, {0, 0, picture.size.width, picture.size.height}, 1, window->color});
    if (cursor == CursorShown::yes)
        addCursor(picture, window->frame, desktop.flipped(desktop.pointer()));
    return picture;
}

} // namespace

bool SimulatedPicture::shows(WindowID window) const {
    return std::ranges::find(tiles, window, &Tile::windowID) != tiles.end();
}

SimulatedColor SimulatedPicture::colorAt(Point point) const {
    if (cursor &&
        Rect{cursor->x, cursor->y, simulatedCursorSize, simulatedCursorSize}.contains(point))
        return {255, 255, 255};
    auto color = background;
    // Back to front, each over what is beneath it.
    for (auto tile = tiles.rbegin(); tile != tiles.rend(); ++tile) {
        if (!tile->frame.contains(point))
            continue;
        color = {blend(tile->color.red, tile->alpha, color.red),
                 blend(tile->color.green, tile->alpha, color.green),
                 blend(tile->color.blue, tile->alpha, color.blue)};
    }
    return color;
}

std::optional<SimulatedPicture> takePicture(const SimulatedDesktop& desktop,
                                            const ContentFilter& filter, CursorShown cursor) {
    if (const auto* display = std::get_if<DisplayFilter>(&filter))
        return takeDisplayPicture(desktop, *display, cursor);
    return takeWindowPicture(desktop, std::get<WindowFilter>(filter), cursor);
}

SimulatedColor colorInFrame(const SimulatedPicture& picture, Size pixels, Point pixel) {
    if (picture.size.width <= 0 || picture.size.height <= 0)
        return {};
    const auto scale =
        std::min(pixels.width / picture.size.width, pixels.height / picture.size.height);
    const Point point{(pixel.x + 0.5 - (pixels.width - picture.size.width * scale) / 2) / scale,
                      (pixel.y + 0.5 - (pixels.height - picture.size.height * scale) / 2) / scale};
    if (!Rect{0, 0, picture.size.width, picture.size.height}.contains(point))
        return {};
    return picture.colorAt(point);
}

StillImage draw(const SimulatedPicture& picture, int width, int height) {
    StillImage image;
    image.width = width;
    image.height = height;
    image.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    auto* next = image.pixels.data();
    const Size pixels{static_cast<double>(width), static_cast<double>(height)};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto color =
                colorInFrame(picture, pixels, {static_cast<double>(x), static_cast<double>(y)});
            *next++ = color.blue;
            *next++ = color.green;
            *next++ = color.red;
            *next++ = 255;
        }
    }
    return image;
}

} // namespace kestrove
