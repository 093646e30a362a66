#pragma once

#include "Async/Signal.h"
#include "Platform/X11/Capture/FramePainter.h"
#include "Platform/X11/Capture/PictureFormats.h"
#include "Platform/X11/Capture/Region.h"
#include "Platform/X11/Capture/ServerResource.h"

#include <memory>

namespace kestrove::x11 {

/// A stream's picture of its source, in the server: a pixmap of 24 planes, black at first, the size
/// of the source in pixels. It is the same for all frames of one size.
///
/// What has changed is painted into the pixmap when it is asked for, and not at all as long as it
/// is only drawn somewhere as it is: it can then come straight from the source. So the pixmap may
/// lag behind, but nobody who asks this sees it.
///
/// Thread: main, also for letting go of it.
class FrameSurface {
public:
    FrameSurface(Connection& connection, const PictureFormats& formats, int width, int height);

    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    [[nodiscard]] xcb_pixmap_t pixmap() const { return m_pixmap.get(); }
    [[nodiscard]] xcb_render_picture_t picture() const { return m_picture.get(); }
    [[nodiscard]] Region bounds() const { return {0, 0, m_width, m_height}; }
    /// Whether the server still has it: false once the connection it was made on is lost.
    [[nodiscard]] bool isValid() const { return static_cast<bool>(m_pixmap); }

    /// The server had no memory for it or, as whoever shows it says here, for showing it: it
    /// cannot be seen.
    [[nodiscard]] Signal<>& refused() { return *m_refused; }

    /// `painter` has `region` newer than the pixmap. It stays until it is detached.
    void invalidate(FramePainter& painter, const Region& region);

    /// Paints what is newer into the pixmap, so that it can be read.
    void bringUpToDate() { bringUpToDate(m_newer); }

    /// Draws `region` (pixels of the surface) as it is into `target`, whose clip it sets.
    void draw(const PaintTarget& target, const Region& region);

    /// The painter goes, or is about to paint something else: what it has newer is kept.
    void detach();
    /// The same where it has nothing to paint any more.
    void forget();

private:
    void bringUpToDate(const Region& region);

    Connection& m_connection;
    int m_width;
    int m_height;
    Pixmap m_pixmap;
    Picture m_picture;
    FramePainter* m_painter = nullptr;
    Region m_newer;
    /// Shared, for the server may answer when this has gone.
    std::shared_ptr<Signal<>> m_refused = std::make_shared<Signal<>>();
};

/// Limits what is painted into `picture` from now on.
void setClip(Connection& connection, xcb_render_picture_t picture, const Region& clip);

} // namespace kestrove::x11
