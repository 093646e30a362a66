#pragma once

#include "Platform/X11/Capture/FrameSurface.h"
#include "Platform/X11/Capture/PictureFormats.h"
#include "Platform/X11/Capture/Region.h"
#include "Platform/X11/Capture/ServerResource.h"

#include <memory>
#include <vector>

namespace kestrove::x11 {

/// Draws a frame surface, fitted and centred, into a picture of some size, part by part. Where the
/// sizes are the same, changes may come straight from the source.
///
/// RENDER's filters look at four pixels at most: beyond a reduction to a half, text would lose
/// lines. The frame is therefore halved in passes first, each pixel the mean of four, until what is
/// left is at most a half. Only what has changed goes through the passes.
///
/// Thread: main. Lifetime: for one surface and one target size.
class FrameScaler {
public:
    /// `width` and `height`: of the target, in pixels.
    FrameScaler(Connection& connection, const PictureFormats& formats,
                std::shared_ptr<FrameSurface> surface, int width, int height);

    [[nodiscard]] const FrameSurface& surface() const { return *m_surface; }

    /// The server had no memory for what it scales by way of: nothing that it draws is right.
    [[nodiscard]] Signal<>& refused() { return *m_refused; }

    /// Where in the target the frame goes; the rest of the target stays as it is.
    [[nodiscard]] const Region& destination() const { return m_destination; }

    /// Brings `changed` (pixels of the surface) up to date in `target`, whose clip it sets. It is a
    /// picture of `window`, or of a pixmap where that is none.
    void draw(xcb_render_picture_t target, xcb_window_t window, const Region& changed);

    /// Draws all of it: the first frame, which may be black where its source shows nothing.
    void drawAll(xcb_render_picture_t target);

    /// Draws `part` (pixels of the target) from what was brought up to date before.
    void redraw(xcb_render_picture_t target, const Region& part);

private:
    struct Level {
        int width;
        int height;
        Pixmap pixmap;
        Picture picture;
    };

    void drawScaled(xcb_render_picture_t target, const Region& changed);
    void addHalvedLevels(const PictureFormats& formats, double reduction);
    void setScale(xcb_render_picture_t picture, double x, double y) const;
    [[nodiscard]] bool isOneToOne() const;
    [[nodiscard]] xcb_render_picture_t source() const;
    [[nodiscard]] Region toTarget(const Region& changed) const;

    Connection& m_connection;
    std::shared_ptr<FrameSurface> m_surface;
    /// A picture of the surface of our own, since scale and filter belong to a picture.
    Picture m_picture;
    std::vector<Level> m_halved;
    int m_x = 0;
    int m_y = 0;
    int m_width = 0;
    int m_height = 0;
    Region m_destination;
    /// Shared, for the server may answer when this has gone.
    std::shared_ptr<Signal<>> m_refused = std::make_shared<Signal<>>();
};

} // namespace kestrove::x11
