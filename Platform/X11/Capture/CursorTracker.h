#pragma once

#include "Async/Signal.h"
#include "Platform/X11/Capture/PictureFormats.h"
#include "Platform/X11/Capture/Region.h"
#include "Platform/X11/Capture/ServerResource.h"
#include "Platform/X11/RawMotion.h"

#include <deque>
#include <memory>
#include <optional>

namespace kestrove::x11 {

/// The pointer's image, kept in the server. Pixels.
struct CursorImage {
    int width = 0;
    int height = 0;
    /// Which of its pixels points.
    int hotX = 0;
    int hotY = 0;
    Picture picture;
};

/// Where the pointer is and what it looks like. Images are fetched once each and kept by the serial
/// number that the server gives them.
///
/// Thread: main.
class CursorTracker {
public:
    CursorTracker(Connection& connection, const PictureFormats& formats, RawMotion& motion);

    struct Position {
        /// Root coordinates, pixels.
        int x = 0;
        int y = 0;
        /// The root's child that the pointer is in; none over the bare root.
        xcb_window_t topLevel = XCB_NONE;

        bool operator==(const Position&) const = default;
    };

    /// Asks the server, unless nothing has moved since it was last asked.
    [[nodiscard]] Position position();
    /// Null when the pointer has no image.
    [[nodiscard]] std::shared_ptr<const CursorImage> image();

    /// Told of movements and new images, while somebody listens. What windows do under a resting
    /// pointer is not told; `invalidate` makes the next `position` ask.
    [[nodiscard]] Subscription onChanged(std::function<void()> callback);
    void invalidate() { m_position.reset(); }

private:
    struct Known {
        std::uint32_t serial = 0;
        std::shared_ptr<const CursorImage> image;
    };

    void onEvent(const xcb_generic_event_t& event);
    std::shared_ptr<const CursorImage> fetch();

    Connection& m_connection;
    const PictureFormats& m_formats;
    RawMotion& m_motion;
    std::optional<Position> m_position;
    /// The serial of the image shown now; absent until asked for.
    std::optional<std::uint32_t> m_serial;
    std::deque<Known> m_known;
    Signal<> m_imageChanged;
    bool m_hasImageChanged = false;
    Subscription m_events;
    Subscription m_drained;
};

} // namespace kestrove::x11
